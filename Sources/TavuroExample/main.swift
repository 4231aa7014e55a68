// A small Swift host: it goes through the order in which a host uses
// TavuroCommon, printing what each step gives.
//
//   swift run TavuroExample [RESOURCES]
//
// RESOURCES holds TavuroConfig.plist and sample_answer.json (default:
// examples/host/resources). Only getters touch the configuration here, so
// the file is never rewritten. On a phone the resources are the app's main
// bundle and the host names no directory at all.
import Foundation
import TavuroCommon

func describe(_ text: String?) -> String {
    text.map { "\"\($0)\"" } ?? "(absent)"
}

// 1. The first use of Credential loads TavuroConfig.plist from the resource directory.
let resources = CommandLine.arguments.dropFirst().first ?? "examples/host/resources"
setResourceDirectory(directory: resources)
print("1. The credential store loads \(resources)/TavuroConfig.plist")
print("   user name \(describe(Credential.username())), subscription \(describe(Credential.subscription()))")
if let endpoints = Credential.endpoints() {
    print("   FRM \(describe(endpoints.frmEndpoint))")
    print("   document authentication \(describe(endpoints.idEndpoint))")
    print("   passive liveness \(describe(endpoints.passiveLivenessEndpoint))")
    print("   health insurance \(describe(endpoints.healthInsuranceEndpoint))")
    print("   Kelmo \(describe(endpoints.kelmoEndpoint))")
} else {
    print("   no configuration file was read")
}

// 2. The host starts the packages it links; the callback comes last.
final class ExamplePackage: ITavuroPackage {
    let name: String
    init(name: String) { self.name = name }
    func initialize() { print("   package \(name) initialized") }
}

print("2. The host starts its packages")
TavuroInitializer().initialize(packages: [ExamplePackage(name: "DocumentCapture"),
                                          ExamplePackage(name: "FaceCapture")]) { error in
    print("   start-up complete, error: \(error.map { describe($0.errorDescription) } ?? "none")")
}

// 3. A package asks the store for the address, whether the credentials
// suffice and the header value (Basic while no token is stored) ...
print("3. A package prepares a request to the document authentication service")
let endpoint = Credential.endpoints()?.idEndpoint
print("   endpoint \(describe(endpoint)), credentials suffice: "
      + (Credential.isCredentialValid(endpoint: endpoint) ? "yes" : "no"))
print("   Authorization: \(describe(Credential.getTavuroAuthHeader()))")

// ... reads the service's JSON answer with the lenient getters ...
let answerPath = resources + "/sample_answer.json"
if let text = try? String(contentsOfFile: answerPath, encoding: .utf8) {
    print("   the answer in \(answerPath):")
    let answer = Utils.convertToDictionary(text: text)
    print("   result \(Utils.getIntValue(jsonDict: answer, key: "Result")), "
          + "instance \(Utils.getStringValue(jsonDict: answer, key: "InstanceId"))")
    let biographic = Utils.getObjectValue(jsonDict: answer, key: "Biographic")
    let born = Utils.dateFieldToDateString(dateStr: Utils.getStringValue(jsonDict: biographic, key: "BirthDate"))
    let expires = Utils.dateFieldToDateString(
        dateStr: Utils.getStringValue(jsonDict: biographic, key: "ExpirationDate"))
    print("   \(Utils.getStringValue(jsonDict: biographic, key: "FullName")), "
          + "age \(Utils.getIntValue(jsonDict: biographic, key: "Age")), born \(born ?? ""), expires \(expires ?? "")")
    let type = Utils.getObjectValue(jsonDict: Utils.getObjectValue(jsonDict: answer, key: "Classification"),
                                    key: "Type")
    print("   document: \(Utils.getStringValue(jsonDict: type, key: "ClassName")) "
          + "issued \(Utils.getStringValue(jsonDict: type, key: "IssueYear"))")
    for case let field as [String: Any] in Utils.getArrayValue(jsonDict: answer, key: "Fields") ?? [] {
        let value = Utils.dateFieldToDateString(dateStr: Utils.getStringValue(jsonDict: field, key: "Value")) ?? ""
        let reliability = String(format: "%.2f", Utils.getDoubleValue(jsonDict: field, key: "Reliability"))
        let consistent = Utils.getBooleanValue(jsonDict: field, key: "IsConsistent") ? "" : " (inconsistent)"
        print("   field \(Utils.getStringValue(jsonDict: field, key: "Key")): \(value), "
              + "reliability \(reliability)\(consistent)")
    }
    // Lenient reads: a text is not a number, and a missing key is no error.
    print("   IssueYear as a number: \(Utils.getIntValue(jsonDict: type, key: "IssueYear")), "
          + "missing key: \"\(Utils.getStringValue(jsonDict: answer, key: "NoSuchKey"))\"")
} else {
    print("   (no service answer at \(answerPath))")
}

// ... and keeps a session token that a service hands out: requests then
// carry it as Bearer until it is removed.
func base64Url(_ text: String) -> String {
    Data(text.utf8).base64EncodedString().replacingOccurrences(of: "+", with: "-")
        .replacingOccurrences(of: "/", with: "_").replacingOccurrences(of: "=", with: "")
}
let inOneHour = Int(Date().timeIntervalSince1970) + 3600
let token = base64Url(#"{"alg":"none"}"#) + "." + base64Url("{\"exp\":\(inOneHour)}") + "." + base64Url("signature")
print("   the service hands out a session token: " + (Credential.setToken(token: token) ? "stored" : "refused"))
print("   Authorization: \(describe(Credential.getTavuroAuthHeader()))")
print("   token removed: " + (Credential.removeToken() ? "yes" : "no"))

// 4. Results travel back to the host as records; a failure is also a Swift Error.
print("4. Results travel back to the host")
func capture() throws -> Image {
    guard let picture = Picture(width: 2, height: 2, pixelFormat: .gray8, pixels: Data([0, 85, 170, 255])) else {
        throw TavuroError(errorCode: TavuroErrorCodes.ERROR_CouldNotCrop,
                          errorDescription: TavuroErrorDescriptions.ERROR_DESC_CouldNotCrop)
    }
    let image = Image.newInstance(image: picture, data: ByteBuffer(Data([0xFF, 0xD8, 0xFF, 0xD9])))
    image.dpi = 300
    image.aspectRatio = 1.586
    image.isCorrectAspectRatio = true
    image.points = [CGPoint(x: 0, y: 0), CGPoint(x: 2, y: 2)]
    return image
}
let failure = TavuroError.newInstance()
failure.errorCode = TavuroErrorCodes.ERROR_Network
failure.errorDescription = TavuroErrorDescriptions.ERROR_DESC_Network
print("   error: code \(failure.errorCode), description \(describe(failure.errorDescription))")
do {
    let image = try capture()
    let size = image.image.map { "\($0.width)x\($0.height)" } ?? "no"
    print("   image: \(size) pixels, \(image.data?.count ?? 0) encoded bytes, \(image.dpi) dpi, "
          + "aspect ratio \(String(format: "%.3f", image.aspectRatio)), \(image.points.count) points, "
          + "passport \(image.isPassport ? "yes" : "no"), error \(image.error == nil ? "none" : "yes")")
} catch let error as TavuroError {
    print("   capture failed: \(error.errorCode)")
}

print("Processing mode and shared settings")
print("   processing mode: \(DocumentProcessingMode.processingMode().rawValue)")
DocumentProcessingMode.setDataCaptureProcessingMode()
print("   after switching to data capture: \(DocumentProcessingMode.processingMode().rawValue)")
print("   JPEG quality of sent images: \(String(format: "%.2f", Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION))")
print("   kit version: \(Utils.SDK_VERSION_CODE)")
