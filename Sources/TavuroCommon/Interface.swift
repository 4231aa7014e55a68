// The regular part of the module: every class, member, enumeration and
// constant of the interface table, each calling its C function. The region
// below is written by scripts/generate_interface.py (through
// scripts/generate_swift.py): change the table or the generator, not it.
import CTavuroCommon
import Foundation

// BEGIN generated from interface/TavuroCommon.json: swift
/// A capture package as the initializer sees it: one start-up operation.
public protocol ITavuroPackage: AnyObject {
    /// Starts the package. Called once per occurrence in the list given to the initializer.
    func initialize()
}

/// The start-up entry point: starts the host's packages in order, then reports completion.
public protocol ITavuroInitializer: AnyObject {
    /// Starts every package in list order (duplicates included), then calls `callback` once with
    /// `nil`.
    func initialize(packages: [ITavuroPackage], callback: @escaping (TavuroError?) -> Void)
}

/// Starts the host's packages: every package's `initialize()` in list order, then the callback once
/// with no error, all before `initialize(packages:callback:)` returns, on the caller's thread.
/// Keeps no state; any number may exist.
open class TavuroInitializer: ITavuroInitializer {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_TavuroInitializer_release(handle)
    }

    /// Creates an initializer; creating one starts nothing.
    public init() {
        handle = made(tavuro_TavuroInitializer_init())
    }

    /// Calls every package's `initialize()` in list order (duplicates included), then
    /// `callback(nil)` once, all before it returns. The packages and the callback are held only for
    /// the duration of the call.
    open func initialize(packages: [ITavuroPackage], callback: @escaping (TavuroError?) -> Void) {
        Irregular.TavuroInitializer_initialize(self, packages: packages, callback: callback)
    }
}

/// The process-wide credential store. It loads `TavuroConfig.plist` from the resource directory
/// once, on the first call of any of its operations, and every setter rewrites that file. The store
/// is meant to be set from one thread at a time, before work spreads over threads.
///
/// Where the resource directory is: on the phone the app's main bundle (`Bundle.main`), which this
/// module names before the store's first use unless the host called
/// `setResourceDirectory(directory:)` or set `TAVURO_RESOURCE_PATH`; elsewhere the directory named
/// with `setResourceDirectory(directory:)`, else the environment variable `TAVURO_RESOURCE_PATH`,
/// else the directory of the running executable.
open class Credential {
    /// The one shared instance lives in the library; nothing else is made.
    private init() {}

    /// The account user name; `nil` when the configuration file has none and none was set.
    open class func username() -> String? {
        Irregular.prepareResourceDirectory()
        return takeText(tavuro_Credential_username())
    }

    /// The account password; `nil` when absent.
    open class func password() -> String? {
        Irregular.prepareResourceDirectory()
        return takeText(tavuro_Credential_password())
    }

    /// The subscription identifier; `nil` when absent.
    open class func subscription() -> String? {
        Irregular.prepareResourceDirectory()
        return takeText(tavuro_Credential_subscription())
    }

    /// The store's own `Endpoints` record (shared, not a copy); `nil` when no configuration file
    /// was read and none was set.
    open class func endpoints() -> Endpoints? {
        Irregular.prepareResourceDirectory()
        return tavuro_Credential_endpoints().map { Endpoints(owning: $0) }
    }

    /// Drops the stored session token; `false` when none was stored.
    open class func removeToken() -> Bool {
        Irregular.prepareResourceDirectory()
        return tavuro_Credential_removeToken()
    }

    /// Stores the session token when its "exp" claim lies after now; `false` otherwise. A text
    /// without any "." ends the process.
    open class func setToken(token: String) -> Bool {
        Irregular.prepareResourceDirectory()
        return tavuro_Credential_setTokenWithToken(token)
    }

    /// The stored session token, expired or not; `nil` when none is stored.
    open class func getToken() -> TavuroJwtToken? {
        Irregular.prepareResourceDirectory()
        return Irregular.Credential_getToken()
    }

    /// Whether a request to `endpoint` can be made: `false` for `nil` or an empty endpoint; else
    /// `true` when user name, password and subscription are all non-empty, or while a token is
    /// stored (expired or not).
    open class func isCredentialValid(endpoint: String?) -> Bool {
        Irregular.prepareResourceDirectory()
        return withText(endpoint) { endpoint in tavuro_Credential_isCredentialValidWithEndpoint(endpoint) }
    }

    /// The "Authorization" value: "Bearer " and the token while one is stored, else the Basic
    /// value; `nil` when neither can be made.
    open class func getTavuroAuthHeader() -> String? {
        Irregular.prepareResourceDirectory()
        return Credential.keptGetTavuroAuthHeader.text()
    }

    /// "Basic " and the base64 of user name ":" password; `nil` when either is absent.
    open class func getBasicAuthHeader() -> String? {
        Irregular.prepareResourceDirectory()
        return Credential.keptGetBasicAuthHeader.text()
    }

    /// Stores the user name (`nil` clears it), then rewrites the configuration file.
    open class func setUsername(username: String?) {
        Irregular.prepareResourceDirectory()
        withText(username) { username in tavuro_Credential_setUsernameWithUsername(username) }
    }

    /// Stores the password (`nil` clears it), then rewrites the configuration file.
    open class func setPassword(password: String?) {
        Irregular.prepareResourceDirectory()
        withText(password) { password in tavuro_Credential_setPasswordWithPassword(password) }
    }

    /// Stores the subscription (`nil` clears it), then rewrites the configuration file.
    open class func setSubscription(subscription: String?) {
        Irregular.prepareResourceDirectory()
        withText(subscription) { subscription in tavuro_Credential_setSubscriptionWithSubscription(subscription) }
    }

    /// Keeps `endpoints` itself, not a copy (`nil` clears it), then rewrites the configuration
    /// file.
    open class func setEndpoints(endpoints: Endpoints?) {
        Irregular.prepareResourceDirectory()
        tavuro_Credential_setEndpointsWithEndpoints(endpoints?.handle)
    }

    // The texts last made, kept while the library's revision stays the same.
    private static let keptGetTavuroAuthHeader =
        KeptText(tavuro_Credential_copyTavuroAuthHeader, revision: tavuro_Credential_headerRevision)
    private static let keptGetBasicAuthHeader =
        KeptText(tavuro_Credential_copyBasicAuthHeader, revision: tavuro_Credential_headerRevision)
}

/// The base addresses of the five cloud services, each optional (`nil` when unset). A shared
/// record: `Credential.endpoints()` hands out the store's own record, so a change through any
/// object of it is seen by every holder. Not synchronised: fill it on one thread.
open class Endpoints {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_Endpoints_release(handle)
    }

    /// A record with every address absent.
    public init() {
        handle = made(tavuro_Endpoints_newInstance())
    }

    /// The FRM service's base address; `nil` when unset.
    open var frmEndpoint: String? {
        get { takeText(tavuro_Endpoints_frmEndpoint(handle)) }
        set { withText(newValue) { newValue in tavuro_Endpoints_setFrmEndpoint(handle, newValue) } }
    }

    /// The document authentication service's base address; `nil` when unset.
    open var idEndpoint: String? {
        get { takeText(tavuro_Endpoints_idEndpoint(handle)) }
        set { withText(newValue) { newValue in tavuro_Endpoints_setIdEndpoint(handle, newValue) } }
    }

    /// The passive liveness service's base address; `nil` when unset.
    open var passiveLivenessEndpoint: String? {
        get { takeText(tavuro_Endpoints_passiveLivenessEndpoint(handle)) }
        set { withText(newValue) { newValue in tavuro_Endpoints_setPassiveLivenessEndpoint(handle, newValue) } }
    }

    /// The health insurance card service's base address; `nil` when unset.
    open var healthInsuranceEndpoint: String? {
        get { takeText(tavuro_Endpoints_healthInsuranceEndpoint(handle)) }
        set { withText(newValue) { newValue in tavuro_Endpoints_setHealthInsuranceEndpoint(handle, newValue) } }
    }

    /// The chip verification service's base address; `nil` when unset.
    open var kelmoEndpoint: String? {
        get { takeText(tavuro_Endpoints_kelmoEndpoint(handle)) }
        set { withText(newValue) { newValue in tavuro_Endpoints_setKelmoEndpoint(handle, newValue) } }
    }

    /// A new record with every address absent, as `init()` makes it.
    open class func newInstance() -> Endpoints {
        Endpoints(owning: made(tavuro_Endpoints_newInstance()))
    }
}

/// A stateless decoder of JSON Web Tokens in compact form; every instance behaves the same and may
/// be used from any thread. Only the payload's "exp" claim matters to the library. A subclass's
/// overrides are called where the host calls them; the credential store keeps its own parser.
open class TavuroJwtParser {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_TavuroJwtParser_release(handle)
    }

    /// Creates a parser; parsers have no state.
    public init() {
        handle = made(tavuro_TavuroJwtParser_init())
    }

    /// The token record of `jwtToken`; `nil` when "exp" is missing or not a whole number. A text
    /// without any "." ends the process.
    open func parseToken(jwtToken: String) -> TavuroJwtToken? {
        return tavuro_TavuroJwtParser_parseTokenWithJwtToken(handle, jwtToken).map { TavuroJwtToken(owning: $0) }
    }

    /// The claims of the token's payload; empty when unreadable. A text without any "." ends the
    /// process.
    open func decode(jwtToken: String) -> [String: Any] {
        return takeDictionary(tavuro_TavuroJwtParser_decodeWithJwtToken(handle, jwtToken)) ?? [:]
    }

    /// The bytes of a base64url text; `nil` when it cannot be decoded.
    open func base64UrlDecode(_ text: String) -> Data? {
        return takeBytes(tavuro_TavuroJwtParser_base64UrlDecode(handle, text))
    }

    /// The JSON object in one base64url segment; `nil` when there is none.
    open func decodeJWTPart(_ segment: String) -> [String: Any]? {
        return takeDictionary(tavuro_TavuroJwtParser_decodeJWTPart(handle, segment))
    }
}

/// An immutable session token: its text and the instant it expires. Safe to share across threads.
open class TavuroJwtToken {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_TavuroJwtToken_release(handle)
    }

    /// A token holding `value` and `expiration` unchanged (any text, any instant).
    public init(value: String, expiration: Date) {
        handle = made(tavuro_TavuroJwtToken_initWithValue_expiration(value, expiration.timeIntervalSince1970))
    }

    /// The token text as the service handed it out.
    public var value: String {
        takeText(tavuro_TavuroJwtToken_value(handle)) ?? ""
    }

    /// The instant the token expires.
    public var expiration: Date {
        Date(timeIntervalSince1970: tavuro_TavuroJwtToken_expiration(handle))
    }

    /// Whether now is strictly before `expiration`.
    open func isValid() -> Bool {
        return tavuro_TavuroJwtToken_isValid(handle)
    }
}

/// The one error record of the library: a code from `TavuroErrorCodes` and an optional text from
/// `TavuroErrorDescriptions`. A shared record; it conforms to `Error`, so it can be thrown.
public final class TavuroError: Error, @unchecked Sendable {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_TavuroError_release(handle)
    }

    /// A record with code 0 and no description.
    public init() {
        handle = made(tavuro_TavuroError_newInstance())
    }

    /// A record holding `errorCode` and `errorDescription` (`nil` stays absent).
    public init(errorCode: Int64, errorDescription: String?) {
        handle = made(withText(errorDescription) { errorDescription in tavuro_TavuroError_initWithErrorCode_errorDescription(errorCode, errorDescription) })
    }

    /// A new record with code 0 and no description, as `init()` makes it.
    public class func newInstance() -> TavuroError {
        TavuroError(owning: made(tavuro_TavuroError_newInstance()))
    }

    /// The error code, one of `TavuroErrorCodes`; 0 when unset.
    public var errorCode: Int64 {
        get { tavuro_TavuroError_errorCode(handle) }
        set { tavuro_TavuroError_setErrorCode(handle, newValue) }
    }

    /// The error text, one of `TavuroErrorDescriptions`; `nil` when unset.
    public var errorDescription: String? {
        get { takeText(tavuro_TavuroError_errorDescription(handle)) }
        set { withText(newValue) { newValue in tavuro_TavuroError_setErrorDescription(handle, newValue) } }
    }
}

/// The result record of one capture: picture, encoded bytes, measurements, points and error. A
/// shared record, filled by its producer before it is handed over; not synchronised.
public final class Image {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    /// Takes over the reference that `handle` carries.
    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_Image_release(handle)
    }

    /// A record with every field at its default: no picture, no bytes, 0, `nil`, `false`, 0.0, no
    /// points.
    public init() {
        handle = made(tavuro_Image_newInstance())
    }

    /// A new record with every field at its default, as `init()` makes it.
    public class func newInstance() -> Image {
        Image(owning: made(tavuro_Image_newInstance()))
    }

    /// A default record holding `image` and then `data` (`nil` allowed).
    public class func newInstance(image: Picture, data: ByteBuffer?) -> Image {
        Image(owning: made(tavuro_Image_newInstanceWithImage_data(image.handle, data?.handle)))
    }

    /// The captured picture; `nil` when unset.
    public var image: Picture? {
        get { tavuro_Image_image(handle).map { Picture(owning: $0) } }
        set { tavuro_Image_setImage(handle, newValue?.handle) }
    }

    /// The picture's encoded bytes: the buffer itself, shared with whoever else holds it; `nil`
    /// when unset.
    public var data: ByteBuffer? {
        get { tavuro_Image_data(handle).map { ByteBuffer(owning: $0) } }
        set { tavuro_Image_setData(handle, newValue?.handle) }
    }

    /// Resolution in dots per inch; 0 when unset.
    public var dpi: Int64 {
        get { tavuro_Image_dpi(handle) }
        set { tavuro_Image_setDpi(handle, newValue) }
    }

    /// The failure, when the capture did not succeed; `nil` otherwise.
    public var error: TavuroError? {
        get { tavuro_Image_error(handle).map { TavuroError(owning: $0) } }
        set { tavuro_Image_setError(handle, newValue?.handle) }
    }

    /// Whether the picture has the expected aspect ratio; `false` when unset.
    public var isCorrectAspectRatio: Bool {
        get { tavuro_Image_isCorrectAspectRatio(handle) }
        set { tavuro_Image_setIsCorrectAspectRatio(handle, newValue) }
    }

    /// The measured aspect ratio; 0.0 when unset.
    public var aspectRatio: Float {
        get { tavuro_Image_aspectRatio(handle) }
        set { tavuro_Image_setAspectRatio(handle, newValue) }
    }

    /// Points located on the picture, in the order written; empty when unset, never `nil`. Copied
    /// both ways.
    public var points: [CGPoint] {
        get { Irregular.Image_points(self) }
        set { Irregular.Image_setPoints(self, newValue) }
    }

    /// Whether the captured document is a passport; `false` when unset.
    public var isPassport: Bool {
        get { tavuro_Image_isPassport(handle) }
        set { tavuro_Image_setIsPassport(handle, newValue) }
    }
}

/// The process-wide document processing mode: `.standard` at first and `.dataCapture` for the rest
/// of the process once switched. Set it before work spreads over threads.
public final class DocumentProcessingMode {
    /// The one shared instance lives in the library; nothing else is made.
    private init() {}

    /// The process's mode: `.standard` at first, `.dataCapture` after the switch.
    public static func processingMode() -> ProcessingMode {
        return ProcessingMode(rawValue: tavuro_DocumentProcessingMode_processingMode()) ?? .reserved
    }

    /// Switches the process to `.dataCapture` for good.
    public static func setDataCaptureProcessingMode() {
        tavuro_DocumentProcessingMode_setDataCaptureProcessingMode()
    }
}

/// Lenient JSON access, date field conversion and the two shared settings. The JSON operations keep
/// no state and may be called from any thread; the settings are meant to be set before work spreads
/// over threads.
public final class Utils {
    /// An empty instance: every member is class-level.
    public init() {}

    /// The dictionary of a JSON object text (numbers as `NSNumber`, texts as `String`, literals as
    /// `Bool` and `NSNull`, containers as `[String: Any]` and `[Any]`); `nil` for `nil`, for an
    /// array and for text that is not JSON, which also prints the reader's one-line error
    /// description on standard output.
    public static func convertToDictionary(text: String?) -> [String: Any]? {
        return Irregular.Utils_convertToDictionary(text: text)
    }

    /// The integer under `key`; 0 when `jsonDict` is `nil`, the key is missing, or the value is not
    /// a number exactly representable as `Int64` (a text, a fraction, a boolean).
    public static func getIntValue(jsonDict: [String: Any]?, key: String) -> Int64 {
        return Irregular.Utils_getIntValue(jsonDict: jsonDict, key: key)
    }

    /// The number under `key`; 0.0 when `jsonDict` is `nil`, the key is missing, or the value is
    /// not a number exactly representable as `Double`.
    public static func getDoubleValue(jsonDict: [String: Any]?, key: String) -> Double {
        return Irregular.Utils_getDoubleValue(jsonDict: jsonDict, key: key)
    }

    /// The text under `key`; "" when `jsonDict` is `nil`, the key is missing or the value is not a
    /// text. Never `nil`.
    public static func getStringValue(jsonDict: [String: Any]?, key: String) -> String {
        return Irregular.Utils_getStringValue(jsonDict: jsonDict, key: key)
    }

    /// The boolean under `key`; `false` when `jsonDict` is `nil`, the key is missing or the value
    /// is not a boolean.
    public static func getBooleanValue(jsonDict: [String: Any]?, key: String) -> Bool {
        return Irregular.Utils_getBooleanValue(jsonDict: jsonDict, key: key)
    }

    /// The dictionary under `key`; `nil` when `jsonDict` is `nil`, the key is missing or the value
    /// is not a dictionary.
    public static func getObjectValue(jsonDict: [String: Any]?, key: String) -> [String: Any]? {
        return Irregular.Utils_getObjectValue(jsonDict: jsonDict, key: key)
    }

    /// The array under `key`, elements unconverted; `nil` when `jsonDict` is `nil`, the key is
    /// missing or the value is not an array.
    public static func getArrayValue(jsonDict: [String: Any]?, key: String) -> [Any]? {
        return Irregular.Utils_getArrayValue(jsonDict: jsonDict, key: key)
    }

    /// Same as `getArrayValue(jsonDict:key:)`.
    public static func getArrayValueFromJson(jsonDict: [String: Any]?, key: String) -> [Any]? {
        return Irregular.Utils_getArrayValueFromJson(jsonDict: jsonDict, key: key)
    }

    /// "/Date(1234567890000)/" gives "02-13-2009" (GMT, "MM-dd-yyyy"); a text that is not a plain
    /// millisecond count comes back unchanged. `nil` ends the process.
    public static func dateFieldToDateString(dateStr: String?) -> String? {
        return takeText(withText(dateStr) { dateStr in tavuro_Utils_dateFieldToDateStringWithDateStr(dateStr) })
    }

    /// The JPEG quality for images sent to services (0.9 at first); any value is stored unchanged.
    public static var SENT_IMAGE_QUALITY_JPEG_COMPRESSION: Double {
        get { tavuro_Utils_SENT_IMAGE_QUALITY_JPEG_COMPRESSION() }
        set { tavuro_Utils_setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(newValue) }
    }

    /// The kit's version text ("11.4.10" at first); any text is stored unchanged.
    public static var SDK_VERSION_CODE: String {
        get { takeText(tavuro_Utils_SDK_VERSION_CODE()) ?? "" }
        set { tavuro_Utils_setSDK_VERSION_CODE(newValue) }
    }
}

/// How captured documents are processed; crosses the C interface as its raw value.
public enum ProcessingMode: Int64 {
    /// Raw value 0.
    case reserved = 0
    /// Raw value 1.
    case dataCapture = 1
    /// Raw value 2.
    case standard = 2
}

/// A two-valued kind shared with the capture packages.
public enum DeleteType: Int64 {
    /// Raw value 0.
    case kind0 = 0
    /// Raw value 1.
    case kind1 = 1
}

/// The fixed error codes of the kit: negative numbers that hosts compare against (`case
/// TavuroErrorCodes.ERROR_Network:`). Constants; any thread.
public final class TavuroErrorCodes {
    /// An empty instance; nothing reads it.
    public init() {}

    /// -1; its text is `TavuroErrorDescriptions.ERROR_DESC_InvalidCredentials`.
    public static let ERROR_InvalidCredentials: Int64 = tavuro_TavuroErrorCodes_ERROR_InvalidCredentials()

    /// -4; its text is `TavuroErrorDescriptions.ERROR_DESC_InitializationNotFinished`.
    public static let ERROR_InitializationNotFinished: Int64 = tavuro_TavuroErrorCodes_ERROR_InitializationNotFinished()

    /// -5; its text is `TavuroErrorDescriptions.ERROR_DESC_Network`.
    public static let ERROR_Network: Int64 = tavuro_TavuroErrorCodes_ERROR_Network()

    /// -6; its text is `TavuroErrorDescriptions.ERROR_DESC_InvalidJson`.
    public static let ERROR_InvalidJson: Int64 = tavuro_TavuroErrorCodes_ERROR_InvalidJson()

    /// -7; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotCrop`.
    public static let ERROR_CouldNotCrop: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotCrop()

    /// -13; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotCreateConnectInstance`.
    public static let ERROR_CouldNotCreateConnectInstance: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotCreateConnectInstance()

    /// -14; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotUploadConnectImage`.
    public static let ERROR_CouldNotUploadConnectImage: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotUploadConnectImage()

    /// -15; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotUploadConnectBarcode`.
    public static let ERROR_CouldNotUploadConnectBarcode: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotUploadConnectBarcode()

    /// -16; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotGetConnectData`.
    public static let ERROR_CouldNotGetConnectData: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotGetConnectData()

    /// -20; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotClassifyDocument`.
    public static let ERROR_CouldNotClassifyDocument: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotClassifyDocument()

    /// -21; its text is `TavuroErrorDescriptions.ERROR_DESC_LowResolutionImage`.
    public static let ERROR_LowResolutionImage: Int64 = tavuro_TavuroErrorCodes_ERROR_LowResolutionImage()

    /// -22; its text is `TavuroErrorDescriptions.ERROR_DESC_BlurryImage`.
    public static let ERROR_BlurryImage: Int64 = tavuro_TavuroErrorCodes_ERROR_BlurryImage()

    /// -23; its text is `TavuroErrorDescriptions.ERROR_DESC_ImageWithGlare`.
    public static let ERROR_ImageWithGlare: Int64 = tavuro_TavuroErrorCodes_ERROR_ImageWithGlare()

    /// -24; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotGetIPLivenessToken`.
    public static let ERROR_CouldNotGetIPLivenessToken: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotGetIPLivenessToken()

    /// -25; its text is `TavuroErrorDescriptions.ERROR_DESC_NotALiveFace`.
    public static let ERROR_NotALiveFace: Int64 = tavuro_TavuroErrorCodes_ERROR_NotALiveFace()

    /// -26; its text is `TavuroErrorDescriptions.ERROR_DESC_CouldNotAccessLivenessData`.
    public static let ERROR_CouldNotAccessLivenessData: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotAccessLivenessData()

    /// -27; its text is `TavuroErrorDescriptions.ERROR_DESC_ERROR_CouldNotAccessCredential`.
    public static let ERROR_CouldNotAccessCredential: Int64 = tavuro_TavuroErrorCodes_ERROR_CouldNotAccessCredential()

    /// -28; its text is `TavuroErrorDescriptions.ERROR_DESC_USER_CANCELED_ACTIVITY`.
    public static let ERROR_USER_CANCELED_ACTIVITY: Int64 = tavuro_TavuroErrorCodes_ERROR_USER_CANCELED_ACTIVITY()

    /// -29; its text is `TavuroErrorDescriptions.ERROR_DESC_INVALID_PARAMETERS`.
    public static let ERROR_INVALID_PARAMETER: Int64 = tavuro_TavuroErrorCodes_ERROR_INVALID_PARAMETER()

    /// -50; its text is `TavuroErrorDescriptions.ERROR_DESC_KelmoInvalidFormat`.
    public static let ERROR_KelmoInvalidFormat: Int64 = tavuro_TavuroErrorCodes_ERROR_KelmoInvalidFormat()

    /// -60; its text is `TavuroErrorDescriptions.ERROR_DESC_EChipReadError`.
    public static let ERROR_EChipReadError: Int64 = tavuro_TavuroErrorCodes_ERROR_EChipReadError()

    /// -61; its text is `TavuroErrorDescriptions.ERROR_DESC_InvalidNfcTag`.
    public static let ERROR_InvalidNfcTag: Int64 = tavuro_TavuroErrorCodes_ERROR_InvalidNfcTag()

    /// -62; its text is `TavuroErrorDescriptions.ERROR_DESC_InvalidNfcKeyFormatting`.
    public static let ERROR_InvalidNfcKeyFormatting: Int64 = tavuro_TavuroErrorCodes_ERROR_InvalidNfcKeyFormatting()
}

/// The fixed error texts of the kit, one per failure. Constants; any thread.
public final class TavuroErrorDescriptions {
    /// An empty instance; nothing reads it.
    public init() {}

    /// "Invalid credentials": the text of `TavuroErrorCodes.ERROR_InvalidCredentials`.
    public static let ERROR_DESC_InvalidCredentials: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidCredentials())

    /// "Invalid endpoint": a text without a code.
    public static let ERROR_DESC_InvalidEndpoint: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidEndpoint())

    /// "Network problem": the text of `TavuroErrorCodes.ERROR_Network`.
    public static let ERROR_DESC_Network: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_Network())

    /// "Initialization not finished": the text of `TavuroErrorCodes.ERROR_InitializationNotFinished`.
    public static let ERROR_DESC_InitializationNotFinished: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InitializationNotFinished())

    /// "Invalid Json response": the text of `TavuroErrorCodes.ERROR_InvalidJson`.
    public static let ERROR_DESC_InvalidJson: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidJson())

    /// "Could not crop image": the text of `TavuroErrorCodes.ERROR_CouldNotCrop`.
    public static let ERROR_DESC_CouldNotCrop: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotCrop())

    /// "Barcode capture failed": a text without a code.
    public static let ERROR_DESC_BarcodeCaptureFailed: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_BarcodeCaptureFailed())

    /// "Barcode capture timed out": a text without a code.
    public static let ERROR_DESC_BarcodeCaptureTimedOut: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_BarcodeCaptureTimedOut())

    /// "Could not create connect Instance": the text of `TavuroErrorCodes.ERROR_CouldNotCreateConnectInstance`.
    public static let ERROR_DESC_CouldNotCreateConnectInstance: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotCreateConnectInstance())

    /// "Could not upload image to connect instance": the text of `TavuroErrorCodes.ERROR_CouldNotUploadConnectImage`.
    public static let ERROR_DESC_CouldNotUploadConnectImage: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotUploadConnectImage())

    /// "Could not upload barcode to connect instance": the text of `TavuroErrorCodes.ERROR_CouldNotUploadConnectBarcode`.
    public static let ERROR_DESC_CouldNotUploadConnectBarcode: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotUploadConnectBarcode())

    /// "Could not get connect image data": the text of `TavuroErrorCodes.ERROR_CouldNotGetConnectData`.
    public static let ERROR_DESC_CouldNotGetConnectData: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetConnectData())

    /// "Card width not set": a text without a code.
    public static let ERROR_DESC_CardWidthNotSet: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CardWidthNotSet())

    /// "Could not get health card data": a text without a code.
    public static let ERROR_DESC_CouldNotGetHealthCardData: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetHealthCardData())

    /// "Could not classify document": the text of `TavuroErrorCodes.ERROR_CouldNotClassifyDocument`.
    public static let ERROR_DESC_CouldNotClassifyDocument: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotClassifyDocument())

    /// "Low resolution image": the text of `TavuroErrorCodes.ERROR_LowResolutionImage`.
    public static let ERROR_DESC_LowResolutionImage: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_LowResolutionImage())

    /// "Blurry image": the text of `TavuroErrorCodes.ERROR_BlurryImage`.
    public static let ERROR_DESC_BlurryImage: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_BlurryImage())

    /// "Image has glare": the text of `TavuroErrorCodes.ERROR_ImageWithGlare`.
    public static let ERROR_DESC_ImageWithGlare: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_ImageWithGlare())

    /// "Could not get face liveness token": the text of `TavuroErrorCodes.ERROR_CouldNotGetIPLivenessToken`.
    public static let ERROR_DESC_CouldNotGetIPLivenessToken: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotGetIPLivenessToken())

    /// "Not a live face": the text of `TavuroErrorCodes.ERROR_NotALiveFace`.
    public static let ERROR_DESC_NotALiveFace: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_NotALiveFace())

    /// "Could not access liveness data": the text of `TavuroErrorCodes.ERROR_CouldNotAccessLivenessData`.
    public static let ERROR_DESC_CouldNotAccessLivenessData: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_CouldNotAccessLivenessData())

    /// "Could not get credential": the text of `TavuroErrorCodes.ERROR_CouldNotAccessCredential`.
    public static let ERROR_DESC_ERROR_CouldNotAccessCredential: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_ERROR_CouldNotAccessCredential())

    /// "User canceled activity": the text of `TavuroErrorCodes.ERROR_USER_CANCELED_ACTIVITY`.
    public static let ERROR_DESC_USER_CANCELED_ACTIVITY: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_USER_CANCELED_ACTIVITY())

    /// "Invalid Parameters.": the text of `TavuroErrorCodes.ERROR_INVALID_PARAMETER`.
    public static let ERROR_DESC_INVALID_PARAMETERS: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_INVALID_PARAMETERS())

    /// "Kelmo returned invalid format": the text of `TavuroErrorCodes.ERROR_KelmoInvalidFormat`.
    public static let ERROR_DESC_KelmoInvalidFormat: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_KelmoInvalidFormat())

    /// "Error reading eChip. Connection lost to passport or incorrect key.": the text of `TavuroErrorCodes.ERROR_EChipReadError`.
    public static let ERROR_DESC_EChipReadError: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_EChipReadError())

    /// "Tag Tech list was null. Most likely means unsupported passport/not a passport": the text of `TavuroErrorCodes.ERROR_InvalidNfcTag`.
    public static let ERROR_DESC_InvalidNfcTag: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidNfcTag())

    /// "Decryption key formatted incorrectly. Check DOB, DOE, and doc number.": the text of `TavuroErrorCodes.ERROR_InvalidNfcKeyFormatting`.
    public static let ERROR_DESC_InvalidNfcKeyFormatting: String = String(cString: tavuro_TavuroErrorDescriptions_ERROR_DESC_InvalidNfcKeyFormatting())
}

/// Names the directory that stands for the app's resource bundle (where "TavuroConfig.plist" lies).
/// Call it before the first use of `Credential`; later calls do not reload the store. Without it:
/// on the phone the app's main bundle; elsewhere `TAVURO_RESOURCE_PATH`, else the directory of the
/// running executable.
public func setResourceDirectory(directory: String) {
    Irregular.hostNamedResourceDirectory()
    tavuro_setResourceDirectory(directory)
}

/// The resource directory in force now ("" when none can be found).
public func resourceDirectory() -> String {
    return takeText(tavuro_resourceDirectory()) ?? ""
}
// END generated: swift
