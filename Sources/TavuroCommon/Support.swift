// The hand-written part of the module: the conversions between C and Swift
// values, the members whose C function does not follow one rule, and the
// resource directory on the phone.
import CTavuroCommon
import Foundation

// MARK: - C values to Swift values

/// `handle`, which a C constructor returns as NULL only when memory ran out.
@inline(__always)
func made(_ handle: OpaquePointer?) -> OpaquePointer {
    guard let handle else { fatalError("TavuroCommon: out of memory") }
    return handle
}

/// The Swift copy of a text the C interface handed over; frees the C copy.
@inline(__always)
func takeText(_ text: UnsafeMutablePointer<CChar>?) -> String? {
    guard let text else { return nil }
    defer { tavuro_string_free(text) }
    return String(cString: text)
}

/// A C function that writes a text into the caller's buffer, snprintf-like
/// (see tavuro_Credential_copyTavuroAuthHeader): buffer, its size, the
/// text's length out; false when there is no text.
typealias TextCopy = (UnsafeMutablePointer<CChar>?, Int, UnsafeMutablePointer<Int>?) -> Bool

/// The text that `copy` writes, built in the string's own storage: one
/// allocation, no C copy to free. `nil` when the C function has no text.
@inline(__always)
func copiedText(_ copy: TextCopy) -> String? {
    var length = 0
    guard copy(nil, 0, &length) else { return nil }
    // The text may change between the calls; then ask again with its new length.
    while length > 0 {
        var needed = 0
        var present = true
        let text = String(unsafeUninitializedCapacity: length) { buffer in
            let chars = UnsafeMutableRawPointer(buffer.baseAddress).map { $0.assumingMemoryBound(to: CChar.self) }
            present = copy(chars, buffer.count, &needed)
            return present && needed <= buffer.count ? needed : 0
        }
        guard present else { return nil }
        if needed <= length { return text }
        length = needed
    }
    return ""
}

/// The text of a C buffer function, made again only when a revision number
/// from the library changes; safe to use from any thread.
final class KeptText: @unchecked Sendable {
    private let copy: TextCopy
    private let revision: () -> UInt64
    private let lock = NSLock()
    private var keptRevision: UInt64 = 0  // 0: nothing kept; guarded by `lock`
    private var kept: String?  // guarded by `lock`

    init(_ copy: @escaping TextCopy, revision: @escaping () -> UInt64) {
        self.copy = copy
        self.revision = revision
    }

    func text() -> String? {
        // Read before the copy: a change in between leaves a newer number behind, never an old text.
        let now = revision()
        lock.lock()
        if now != 0 && now == keptRevision {
            defer { lock.unlock() }
            return kept
        }
        lock.unlock()
        let text = copiedText(copy)
        lock.lock()
        keptRevision = now
        kept = text
        lock.unlock()
        return text
    }
}

/// Runs `body` on the NUL-terminated UTF-8 of `text` (NULL for `nil`).
@inline(__always)
func withText<R>(_ text: String?, _ body: (UnsafePointer<CChar>?) -> R) -> R {
    guard let text else { return body(nil) }
    return text.withCString { body($0) }
}

/// The bytes of a buffer the C interface handed over; gives its reference back.
func takeBytes(_ buffer: OpaquePointer?) -> Data? {
    guard let buffer else { return nil }
    defer { tavuro_ByteBuffer_release(buffer) }
    return ByteBuffer.copy(buffer)
}

/// The Swift dictionary of a C dictionary handle; gives its reference back.
func takeDictionary(_ dictionary: OpaquePointer?) -> [String: Any]? {
    guard let dictionary else { return nil }
    defer { tavuro_JsonDictionary_release(dictionary) }
    guard let node = tavuro_JsonDictionary_nodes(dictionary) else { return nil }
    return JsonBuilder.dictionary(node)
}

/// Builds the Swift values of a document from its nodes in one walk: texts as
/// `String`, numbers as `NSNumber` (integers as `Int64`, or `UInt64` above
/// `Int64.max`; others as `Double`), literals as `Bool` and `NSNull`.
enum JsonBuilder {
    static let null = NSNull()

    // The cases are the values of tavuro_JsonNodeType.
    static func value(_ node: UnsafePointer<tavuro_JsonNode>) -> Any {
        let payload = node.pointee.payload
        switch node.pointee.type {
        case 1: return false
        case 2: return true
        case 3: return NSNumber(value: payload.int64Value)
        case 4: return NSNumber(value: payload.uint64Value)
        case 5: return NSNumber(value: payload.doubleValue)
        case 6: return text(node)
        case 7: return array(node)
        case 8: return dictionary(node)
        default: return null
        }
    }

    @inline(__always)
    static func text(_ node: UnsafePointer<tavuro_JsonNode>) -> String {
        let count = Int(node.pointee.size)
        guard count > 0, let chars = node.pointee.payload.chars else { return "" }
        return String(decoding: UnsafeRawBufferPointer(start: chars, count: count), as: UTF8.self)
    }

    static func array(_ node: UnsafePointer<tavuro_JsonNode>) -> [Any] {
        let count = Int(node.pointee.size)
        guard count > 0, let children = node.pointee.payload.children else { return [] }
        var result = [Any]()
        result.reserveCapacity(count)
        for index in 0..<count {
            result.append(value(children + index))
        }
        return result
    }

    static func dictionary(_ node: UnsafePointer<tavuro_JsonNode>) -> [String: Any] {
        let count = Int(node.pointee.size)
        guard count > 0, let children = node.pointee.payload.children else { return [:] }
        var result = [String: Any](minimumCapacity: count)
        for index in 0..<count {
            // Keys are unique already: the reader kept the first of equal keys.
            result[text(children + 2 * index)] = value(children + 2 * index + 1)
        }
        return result
    }
}

// MARK: - The getters on a host-made dictionary

/// What the strict conversions of the getters see in one Swift value: the
/// JSON kind it stands for, with numbers kept as the C++ reader keeps them
/// (signed, unsigned above `Int64.max`, or floating point).
enum JsonScalar {
    case boolean(Bool)
    case signed(Int64)
    case unsigned(UInt64)
    case floating(Double)
    case other

    private static let booleanClass: AnyClass = type(of: NSNumber(value: true))
    /// The class of the numbers that this module and Foundation's reader make.
    private static let numberClass: AnyClass = type(of: NSNumber(value: Int64(0)))

    @inline(__always)
    init(_ value: Any) {
        // The type tests first: a cast alone would also box a Swift number, and casting an
        // NSNumber to a Swift number type goes through the bridge, hundreds of times slower.
        let kind = type(of: value)
        if kind == JsonScalar.numberClass {
            // Exactly that class, so the existential holds the reference itself in its first
            // word: read it there instead of paying for a dynamic cast.
            self.init(number: withUnsafeBytes(of: value) { $0.load(as: NSNumber.self) })
        } else if kind is NSNumber.Type, let number = value as? NSNumber {
            self.init(number: number)
        } else {
            self.init(swiftValue: value)
        }
    }

    private init(swiftValue value: Any) {
        switch value {
        case let x as Bool: self = .boolean(x)
        case let x as Int: self = .signed(Int64(x))
        case let x as Int64: self = .signed(x)
        case let x as Int32: self = .signed(Int64(x))
        case let x as Int16: self = .signed(Int64(x))
        case let x as Int8: self = .signed(Int64(x))
        case let x as UInt: self = JsonScalar(unsigned: UInt64(x))
        case let x as UInt64: self = JsonScalar(unsigned: x)
        case let x as UInt32: self = .signed(Int64(x))
        case let x as UInt16: self = .signed(Int64(x))
        case let x as UInt8: self = .signed(Int64(x))
        case let x as Double: self = .floating(x)
        case let x as Float: self = .floating(Double(x))
        default: self = .other
        }
    }

    private init(number: NSNumber) {
        if type(of: number) == JsonScalar.booleanClass {
            self = .boolean(number.boolValue)
            return
        }
        switch UInt8(bitPattern: number.objCType.pointee) {
        case UInt8(ascii: "d"), UInt8(ascii: "f"): self = .floating(number.doubleValue)
        case UInt8(ascii: "Q"), UInt8(ascii: "L"), UInt8(ascii: "I"):
            self = JsonScalar(unsigned: number.uint64Value)
        default: self = .signed(number.int64Value)
        }
    }

    private init(unsigned value: UInt64) {
        self = value <= UInt64(Int64.max) ? .signed(Int64(value)) : .unsigned(value)
    }

    /// The value as `Int64` when it is a number exactly representable there.
    @inline(__always)
    var exactInt64: Int64? {
        switch self {
        case .signed(let x): return x
        case .floating(let d):
            // [-2^63, 2^63): the upper bound itself is no Int64.
            guard d >= -9_223_372_036_854_775_808.0, d < 9_223_372_036_854_775_808.0,
                  d.rounded(.towardZero) == d else { return nil }
            return Int64(d)
        default: return nil
        }
    }

    /// The value as `Double` when it is a number exactly representable there.
    @inline(__always)
    var exactDouble: Double? {
        switch self {
        case .floating(let d): return d
        case .signed(let x):
            let d = Double(x)
            return d < 9_223_372_036_854_775_808.0 && Int64(d) == x ? d : nil
        case .unsigned(let x):
            let d = Double(x)
            return d < 18_446_744_073_709_551_616.0 && UInt64(d) == x ? d : nil
        default: return nil
        }
    }
}

enum Irregular {
    @inline(__always)
    static func lookUp(_ jsonDict: [String: Any]?, _ key: String) -> Any? {
        jsonDict?[key]
    }

    static func Utils_getIntValue(jsonDict: [String: Any]?, key: String) -> Int64 {
        guard let value = lookUp(jsonDict, key) else { return 0 }
        return JsonScalar(value).exactInt64 ?? 0
    }

    static func Utils_getDoubleValue(jsonDict: [String: Any]?, key: String) -> Double {
        guard let value = lookUp(jsonDict, key) else { return 0.0 }
        return JsonScalar(value).exactDouble ?? 0.0
    }

    static func Utils_getStringValue(jsonDict: [String: Any]?, key: String) -> String {
        lookUp(jsonDict, key) as? String ?? ""
    }

    static func Utils_getBooleanValue(jsonDict: [String: Any]?, key: String) -> Bool {
        guard let value = lookUp(jsonDict, key), case .boolean(let x) = JsonScalar(value) else { return false }
        return x
    }

    static func Utils_getObjectValue(jsonDict: [String: Any]?, key: String) -> [String: Any]? {
        lookUp(jsonDict, key) as? [String: Any]
    }

    static func Utils_getArrayValue(jsonDict: [String: Any]?, key: String) -> [Any]? {
        lookUp(jsonDict, key) as? [Any]
    }

    static func Utils_getArrayValueFromJson(jsonDict: [String: Any]?, key: String) -> [Any]? {
        Utils_getArrayValue(jsonDict: jsonDict, key: key)
    }

    static func Utils_convertToDictionary(text: String?) -> [String: Any]? {
        guard var text else { return nil }
        let handle = text.withUTF8 { bytes in
            bytes.withMemoryRebound(to: CChar.self) { chars in
                tavuro_Utils_convertToDictionaryWithBytes_length(chars.baseAddress ?? emptyText, chars.count)
            }
        }
        return takeDictionary(handle)
    }

    private static let emptyText: UnsafePointer<CChar> = {
        let text = UnsafeMutablePointer<CChar>.allocate(capacity: 1)
        text.initialize(to: 0)
        return UnsafePointer(text)
    }()

    // MARK: Members whose C function is written by hand

    static func Credential_getToken() -> TavuroJwtToken? {
        tavuro_Credential_getToken().map { TavuroJwtToken(owning: $0) }
    }

    static func Image_points(_ image: Image) -> [CGPoint] {
        let count = tavuro_Image_points(image.handle, nil, 0)
        guard count > 0 else { return [] }
        var points = [tavuro_Point](repeating: tavuro_Point(x: 0, y: 0), count: count)
        let copied = points.withUnsafeMutableBufferPointer {
            tavuro_Image_points(image.handle, $0.baseAddress, count)
        }
        return points.prefix(min(count, copied)).map { CGPoint(x: $0.x, y: $0.y) }
    }

    static func Image_setPoints(_ image: Image, _ points: [CGPoint]) {
        let copies = points.map { tavuro_Point(x: Double($0.x), y: Double($0.y)) }
        copies.withUnsafeBufferPointer { tavuro_Image_setPoints(image.handle, $0.baseAddress, $0.count) }
    }

    /// The C view of the packages and the callback, alive for one call.
    private final class StartUp {
        let packages: [ITavuroPackage]
        let callback: (TavuroError?) -> Void
        init(_ packages: [ITavuroPackage], _ callback: @escaping (TavuroError?) -> Void) {
            self.packages = packages
            self.callback = callback
        }
    }

    static func TavuroInitializer_initialize(_ initializer: TavuroInitializer, packages: [ITavuroPackage],
                                             callback: @escaping (TavuroError?) -> Void) {
        // Each package's context is the package itself, kept alive by `startUp`.
        let startUp = StartUp(packages, callback)
        let entries = packages.map { package in
            tavuro_ITavuroPackage(
                initialize: { context in
                    guard let context else { return }
                    (Unmanaged<AnyObject>.fromOpaque(context).takeUnretainedValue() as? ITavuroPackage)?.initialize()
                },
                context: Unmanaged<AnyObject>.passUnretained(package).toOpaque())
        }
        withExtendedLifetime(startUp) {
            entries.withUnsafeBufferPointer { buffer in
                tavuro_TavuroInitializer_initializeWithPackages_callback(
                    initializer.handle, buffer.baseAddress, buffer.count,
                    { context, error in
                        guard let context else { return }
                        let startUp = Unmanaged<StartUp>.fromOpaque(context).takeUnretainedValue()
                        // The error is borrowed: the Swift record takes its own reference.
                        startUp.callback(error.map { TavuroError(owning: made(tavuro_TavuroError_retain($0))) })
                    },
                    Unmanaged.passUnretained(startUp).toOpaque())
            }
        }
    }

    // MARK: The resource directory

    /// Whether the host named the resource directory itself.
    private final class NamedDirectory: @unchecked Sendable {
        let lock = NSLock()
        var named = false  // guarded by `lock`
    }

    private static let namedDirectory = NamedDirectory()

    /// Called by `setResourceDirectory(directory:)`: the host's choice stands.
    static func hostNamedResourceDirectory() {
        namedDirectory.lock.lock()
        namedDirectory.named = true
        namedDirectory.lock.unlock()
    }

    /// On the phone, names the app's main bundle as the resource
    /// directory before the store's first use, unless the host named one or
    /// set TAVURO_RESOURCE_PATH. Elsewhere the library's own rules apply.
    static func prepareResourceDirectory() {
        #if canImport(Darwin)
        _ = mainBundleNamed
        #endif
    }

    #if canImport(Darwin)
    private static let mainBundleNamed: Void = {
        namedDirectory.lock.lock()
        defer { namedDirectory.lock.unlock() }
        let fromEnvironment = ProcessInfo.processInfo.environment["TAVURO_RESOURCE_PATH"] ?? ""
        if !namedDirectory.named, fromEnvironment.isEmpty, let path = Bundle.main.resourcePath {
            tavuro_setResourceDirectory(path)
        }
    }()
    #endif
}

// MARK: - Platform types that travel in records

/// The layout of one pixel of a `Picture`.
public enum PixelFormat: Int {
    /// One byte of luminance.
    case gray8 = 0
    /// Red, green, blue, one byte each.
    case rgb8 = 1
    /// Red, green, blue, alpha, one byte each.
    case rgba8 = 2
    /// Blue, green, red, alpha, one byte each (camera order).
    case bgra8 = 3

    /// Bytes one pixel takes.
    public var bytesPerPixel: Int {
        switch self {
        case .gray8: return 1
        case .rgb8: return 3
        case .rgba8, .bgra8: return 4
        }
    }
}

/// A decoded picture: pixel rows, top row first. Immutable once made, so it may be read from any
/// thread; the pixels are the library's own, shared by every record that holds the picture.
public final class Picture {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_Picture_release(handle)
    }

    /// A picture holding a copy of `pixels`; `nil` when their count is not
    /// `width * height * pixelFormat.bytesPerPixel`.
    public init?(width: UInt32, height: UInt32, pixelFormat: PixelFormat, pixels: Data) {
        let format = tavuro_PixelFormat(rawValue: tavuro_PixelFormat.RawValue(pixelFormat.rawValue))
        let made = pixels.withUnsafeBytes {
            tavuro_Picture_make(width, height, format, $0.bindMemory(to: UInt8.self).baseAddress, $0.count)
        }
        guard let made else { return nil }
        handle = made
    }

    /// Width in pixels.
    public var width: UInt32 { tavuro_Picture_width(handle) }
    /// Height in pixels.
    public var height: UInt32 { tavuro_Picture_height(handle) }
    /// The layout of one pixel.
    public var pixelFormat: PixelFormat {
        PixelFormat(rawValue: Int(tavuro_Picture_pixelFormat(handle).rawValue)) ?? .rgba8
    }
    /// A copy of the pixels, top row first.
    public var pixels: Data {
        var count = 0
        guard let bytes = tavuro_Picture_pixels(handle, &count), count > 0 else { return Data() }
        return Data(bytes: bytes, count: count)
    }
}

/// A growable byte buffer shared by reference: every holder (an `Image` and the package that
/// filled it, for example) sees a change made through any of them. Not synchronised: change it
/// from one thread at a time.
public final class ByteBuffer {
    /// The C handle; this object holds one reference and gives it back in deinit.
    let handle: OpaquePointer

    init(owning handle: OpaquePointer) {
        self.handle = handle
    }

    deinit {
        tavuro_ByteBuffer_release(handle)
    }

    /// A buffer holding a copy of `data` (empty when none is given).
    public init(_ data: Data = Data()) {
        handle = made(data.withUnsafeBytes { tavuro_ByteBuffer_initWithBytes_length($0.baseAddress, $0.count) })
    }

    /// The number of bytes.
    public var count: Int { tavuro_ByteBuffer_length(handle) }

    /// A copy of the bytes; setting it replaces them in place, for every holder.
    public var data: Data {
        get { ByteBuffer.copy(handle) }
        set {
            _ = tavuro_ByteBuffer_setLength(handle, 0)
            append(newValue)
        }
    }

    /// Appends a copy of `data`; `false` when the bytes could not be stored.
    @discardableResult
    public func append(_ data: Data) -> Bool {
        data.withUnsafeBytes { tavuro_ByteBuffer_appendBytes_length(handle, $0.baseAddress, $0.count) }
    }

    static func copy(_ handle: OpaquePointer) -> Data {
        let count = tavuro_ByteBuffer_length(handle)
        guard count > 0, let bytes = tavuro_ByteBuffer_bytes(handle) else { return Data() }
        return Data(bytes: bytes, count: count)
    }
}

// MARK: - The error tables as data

/// One entry of the error tables: a code with its names and text, or a text that has no code
/// (`code` 0, `codeName` `nil`). Constants; any thread.
public struct TavuroErrorInfo: Equatable {
    /// The code, or 0 for a text without one.
    public let code: Int64
    /// The code's name in `TavuroErrorCodes`, or `nil` for a text without a code.
    public let codeName: String?
    /// The text's name in `TavuroErrorDescriptions`.
    public let descriptionName: String
    /// The text.
    public let description: String

    init(_ info: tavuro_TavuroErrorInfo) {
        code = info.code
        codeName = info.codeName.map { String(cString: $0) }
        descriptionName = info.descriptionName.map { String(cString: $0) } ?? ""
        description = info.description.map { String(cString: $0) } ?? ""
    }

    /// The entry of `code`; `nil` for 0, positive numbers and the gaps of the numbering.
    public static func forCode(_ code: Int64) -> TavuroErrorInfo? {
        var info = tavuro_TavuroErrorInfo()
        return tavuro_TavuroErrorInfo_forCode(code, &info) ? TavuroErrorInfo(info) : nil
    }

    /// Every entry: the codes from -1 downwards, then the texts without a code.
    public static func all() -> [TavuroErrorInfo] {
        let count = tavuro_TavuroErrorInfo_all(nil, 0)
        var entries = [tavuro_TavuroErrorInfo](repeating: tavuro_TavuroErrorInfo(), count: count)
        let copied = entries.withUnsafeMutableBufferPointer { tavuro_TavuroErrorInfo_all($0.baseAddress, count) }
        return entries.prefix(min(count, copied)).map(TavuroErrorInfo.init)
    }
}
