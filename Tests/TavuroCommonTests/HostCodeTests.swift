// Host code written as an app would write it against the library's names:
// that it compiles checks every name, label and optionality; running it
// checks what the Swift layer adds on top of the C interface.
import Foundation
import Testing
import TavuroCommon

private final class RecordingPackage: ITavuroPackage {
    let name: String
    let log: Log
    init(_ name: String, _ log: Log) { self.name = name; self.log = log }
    func initialize() { log.entries.append(name) }
}

private final class Log { var entries: [String] = [] }

private final class HostParser: TavuroJwtParser {
    override func decodeJWTPart(_ segment: String) -> [String: Any]? { ["exp": 1, "host": segment] }
}

private final class HostEndpoints: Endpoints {
    override var frmEndpoint: String? {
        get { super.frmEndpoint.map { $0 + "v2/" } }
        set { super.frmEndpoint = newValue }
    }
}

private final class HostCredential: Credential {
    override class func username() -> String? { "host" }
}

private final class HostInitializer: TavuroInitializer {
    var calls = 0
    override func initialize(packages: [ITavuroPackage], callback: @escaping (TavuroError?) -> Void) {
        calls += 1
        super.initialize(packages: packages, callback: callback)
    }
}

@Suite(.serialized) struct HostCode {
    @Test func startUpRunsPackagesInOrderThenTheCallbackOnce() {
        let log = Log()
        let first = RecordingPackage("first", log), second = RecordingPackage("second", log)
        let cases: [([ITavuroPackage], [String])] = [
            ([], []),
            ([first, second, first], ["first", "second", "first"]),
        ]
        for (packages, expected) in cases {
            log.entries = []
            let initializer: ITavuroInitializer = HostInitializer()
            var errors: [TavuroError?] = []
            initializer.initialize(packages: packages) { error in
                errors.append(error)
                log.entries.append("callback")
            }
            #expect(log.entries == expected + ["callback"])
            #expect(errors.count == 1 && errors[0] == nil)
            #expect((initializer as? HostInitializer)?.calls == 1)
        }
    }

    @Test func aHostSubclassOverrideIsCalledWhereTheHostCallsIt() {
        let parser: TavuroJwtParser = HostParser()
        #expect(parser.decodeJWTPart("abc")?["host"] as? String == "abc")
        #expect(TavuroJwtParser().decodeJWTPart("abc") == nil)
        let endpoints: Endpoints = HostEndpoints()
        endpoints.frmEndpoint = "https://faces/"
        #expect(endpoints.frmEndpoint == "https://faces/v2/")
        #expect(HostCredential.username() == "host")
    }

    @Test func theCredentialStoreSharesItsRecordsAndTakesTokens() throws {
        let directory = FileManager.default.temporaryDirectory
            .appendingPathComponent("tavuro-swift-\(ProcessInfo.processInfo.processIdentifier)")
        try FileManager.default.createDirectory(at: directory, withIntermediateDirectories: true)
        defer { try? FileManager.default.removeItem(at: directory) }
        let plist = #"<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>"#
            + "<key>tavuro_username</key><string>user</string><key>tavuro_password</key><string>pass</string>"
            + "</dict></plist>"
        try plist.write(to: directory.appendingPathComponent("TavuroConfig.plist"), atomically: true, encoding: .utf8)
        setResourceDirectory(directory: directory.path)
        #expect(resourceDirectory() == directory.path)

        let username: String? = Credential.username()
        #expect(username == "user" && Credential.subscription() == nil)
        #expect(Credential.getBasicAuthHeader() == "Basic dXNlcjpwYXNz")
        #expect(Credential.getTavuroAuthHeader() == "Basic dXNlcjpwYXNz")
        // The store's own record: a change through one object is seen through the next.
        let endpoints: Endpoints? = Credential.endpoints()
        #expect(endpoints?.kelmoEndpoint == "https://kelmo.tavuro.com/api/")
        endpoints?.idEndpoint = "https://documents/"
        #expect(Credential.endpoints()?.idEndpoint == "https://documents/")
        #expect(!Credential.isCredentialValid(endpoint: "https://documents/"))
        Credential.setSubscription(subscription: "sub")
        #expect(Credential.isCredentialValid(endpoint: "https://documents/"))
        #expect(!Credential.isCredentialValid(endpoint: nil))
        let saved = try String(contentsOf: directory.appendingPathComponent("TavuroConfig.plist"), encoding: .utf8)
        #expect(saved.contains("https://documents/") && saved.contains("sub"))

        let later = Int(Date().timeIntervalSince1970) + 3600
        let payload = Data("{\"exp\":\(later)}".utf8).base64EncodedString()
            .replacingOccurrences(of: "=", with: "").replacingOccurrences(of: "+", with: "-")
            .replacingOccurrences(of: "/", with: "_")
        let token = "e30.\(payload).sig"
        #expect(Credential.setToken(token: token))
        let stored: TavuroJwtToken? = Credential.getToken()
        #expect(stored?.value == token && stored?.isValid() == true)
        #expect(stored?.expiration == Date(timeIntervalSince1970: TimeInterval(later)))
        let parser = TavuroJwtParser()
        #expect(parser.decode(jwtToken: token)["exp"] as? NSNumber == NSNumber(value: later))
        #expect(parser.parseToken(jwtToken: token)?.value == token && parser.parseToken(jwtToken: "e30.e30.x") == nil)
        #expect(parser.base64UrlDecode("AQI") == Data([1, 2]) && parser.decodeJWTPart("e30")?.isEmpty == true)
        // The headers, made again after every change that alters them however often they were asked.
        let changes: [(() -> Void, String?)] = [
            ({}, "Bearer " + token), ({ _ = Credential.removeToken() }, "Basic dXNlcjpwYXNz"),
            ({ Credential.setPassword(password: "word") }, "Basic dXNlcjp3b3Jk"),
            ({ _ = Credential.setToken(token: token) }, "Bearer " + token),
            ({ Credential.setUsername(username: nil) }, "Bearer " + token), ({ _ = Credential.removeToken() }, nil),
        ]
        for (change, header) in changes {
            change()
            #expect(Credential.getTavuroAuthHeader() == header && Credential.getTavuroAuthHeader() == header)
        }
        #expect(Credential.getBasicAuthHeader() == nil && Credential.getToken() == nil)
        Credential.setPassword(password: "")
        Credential.setEndpoints(endpoints: Endpoints.newInstance())
        #expect(Credential.password() == "" && Credential.endpoints()?.kelmoEndpoint == nil)
    }

    @Test func recordsTablesAndSettingsKeepTheirSwiftTypes() throws {
        let error = TavuroError.newInstance()
        error.errorCode = TavuroErrorCodes.ERROR_Network
        error.errorDescription = TavuroErrorDescriptions.ERROR_DESC_Network
        do {
            throw error
        } catch let caught as TavuroError {
            #expect(caught === error && caught.errorCode == -5 && caught.errorDescription == "Network problem")
        }
        let absent: String? = TavuroError(errorCode: -1, errorDescription: nil).errorDescription
        #expect(absent == nil)
        #expect(TavuroErrorInfo.forCode(-5)?.descriptionName == "ERROR_DESC_Network")
        #expect(TavuroErrorInfo.all().count == 28 && TavuroErrorInfo.forCode(0) == nil)

        let picture = try #require(Picture(width: 2, height: 1, pixelFormat: .gray8, pixels: Data([1, 2])))
        #expect(Picture(width: 2, height: 2, pixelFormat: .rgb8, pixels: Data([1])) == nil)
        let buffer = ByteBuffer(Data([0xFF]))
        let image = Image.newInstance(image: picture, data: buffer)
        buffer.append(Data([0xD8]))  // the record holds the buffer itself
        #expect(image.data?.data == Data([0xFF, 0xD8]) && image.image?.pixels == Data([1, 2]))
        image.points = [CGPoint(x: 1, y: 2), CGPoint(x: 3, y: 4)]
        #expect(image.points == [CGPoint(x: 1, y: 2), CGPoint(x: 3, y: 4)] && Image().points.isEmpty)
        image.error = error
        #expect(image.error?.errorCode == -5)

        #expect(ProcessingMode(rawValue: 3) == nil && DeleteType(rawValue: 1) == .kind1)
        #expect(DocumentProcessingMode.processingMode() == .standard)
        DocumentProcessingMode.setDataCaptureProcessingMode()
        #expect(DocumentProcessingMode.processingMode() == .dataCapture)
        #expect(Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION == 0.9 && Utils.SDK_VERSION_CODE == "11.4.10")
        Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION = 1.5
        Utils.SDK_VERSION_CODE = ""
        #expect(Utils.SENT_IMAGE_QUALITY_JPEG_COMPRESSION == 1.5 && Utils.SDK_VERSION_CODE == "")
        #expect(Utils.dateFieldToDateString(dateStr: "/Date(1234567890000)/") == "02-13-2009")
    }

    @Test func droppedRecordsGiveTheirMemoryBack() {
        func churn() {
            for index in 0..<1_000_000 {
                switch index % 4 {
                case 0: _ = TavuroError(errorCode: Int64(index), errorDescription: "Network problem")
                case 1: Image.newInstance().error = TavuroError()
                case 2: Endpoints.newInstance().frmEndpoint = "https://faces/"
                default: _ = TavuroJwtToken(value: "token", expiration: Date())
                }
            }
        }
        // A leak grows the process by the same amount for every million; the
        // allocator's caches (and a sanitizer's quarantine) grow mostly in the first.
        let start = residentBytes()
        churn()
        let afterFirst = residentBytes()
        churn()
        let second = residentBytes() - afterFirst
        #expect(second < max(16 << 20, (afterFirst - start) / 4), "grew \(second) bytes")
    }
}

/// The resident set size of this process, in bytes (0 where /proc is missing).
func residentBytes() -> Int {
    guard let statm = try? String(contentsOfFile: "/proc/self/statm", encoding: .utf8) else { return 0 }
    let fields = statm.split(separator: " ")
    return fields.count > 1 ? (Int(fields[1]) ?? 0) * 4096 : 0
}
