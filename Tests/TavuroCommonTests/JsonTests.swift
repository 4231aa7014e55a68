// The JSON side of the Swift layer: texts become the platform's own values,
// and the getters, which read any [String: Any] in Swift, answer exactly as
// the C++ getters do on the same JSON text.
import CTavuroCommon
import Foundation
import Testing
import TavuroCommon

/// Every kind of value, the numeric edges of the exactness rule included.
private let documents = [
    #"{"int": 12, "whole": 12.0, "frac": 12.5, "neg": -3, "text": "12", "empty": "", "t": true, "f": false,"#
        + #" "null": null, "obj": {"a": 1}, "arr": [1, "x", null], "Name": "case"}"#,
    #"{"max": 9223372036854775807, "min": -9223372036854775808, "umax": 18446744073709551615,"#
        + #" "big": 1e20, "negbig": -1e19, "two63": 9223372036854775808.0, "odd": 9007199254740993,"#
        + #" "exp": 1e2, "tiny": 5e-324, "zero": 0, "one": 1, "negzero": -0.0}"#,
    #"{"nul": "a\u0000b", "uni": "\u00e9\ud83d\ude00", "esc": "\"\\\/\n", "deep": {"x": {"y": [[{}]]}}}"#,
    "{}",
]

/// The Swift and C++ answers of all seven getters for one key.
private func answers(_ dictionary: [String: Any]?, _ text: String, _ key: String) -> (swift: [String], cxx: [String]) {
    let swift = [
        "\(Utils.getIntValue(jsonDict: dictionary, key: key))",
        "\(Utils.getDoubleValue(jsonDict: dictionary, key: key).bitPattern)",
        Utils.getStringValue(jsonDict: dictionary, key: key),
        "\(Utils.getBooleanValue(jsonDict: dictionary, key: key))",
        "\(Utils.getObjectValue(jsonDict: dictionary, key: key)?.count ?? -1)",
        "\(Utils.getArrayValue(jsonDict: dictionary, key: key)?.count ?? -1)",
        "\(Utils.getArrayValueFromJson(jsonDict: dictionary, key: key)?.count ?? -1)",
    ]
    let handle = tavuro_Utils_convertToDictionaryWithText(text)
    defer { tavuro_JsonDictionary_release(handle) }
    let object = tavuro_Utils_getObjectValueWithJsonDict_key(handle, key)
    let array = tavuro_Utils_getArrayValueWithJsonDict_key(handle, key)
    let sameArray = tavuro_Utils_getArrayValueFromJsonWithJsonDict_key(handle, key)
    defer { tavuro_JsonDictionary_release(object); tavuro_JsonArray_release(array); tavuro_JsonArray_release(sameArray) }
    let string = tavuro_Utils_getStringValueWithJsonDict_key(handle, key)
    defer { tavuro_string_free(string) }
    let objectCount: Int = object.map { Int(tavuro_JsonDictionary_count($0)) } ?? -1
    let arrayCount: Int = array.map { Int(tavuro_JsonArray_count($0)) } ?? -1
    let sameArrayCount: Int = sameArray.map { Int(tavuro_JsonArray_count($0)) } ?? -1
    let stringAnswer: String = string == nil ? "" : cxxText(handle, key)
    let cxx: [String] = [
        String(tavuro_Utils_getIntValueWithJsonDict_key(handle, key)),
        String(tavuro_Utils_getDoubleValueWithJsonDict_key(handle, key).bitPattern),
        stringAnswer,
        String(tavuro_Utils_getBooleanValueWithJsonDict_key(handle, key)),
        String(objectCount), String(arrayCount), String(sameArrayCount),
    ]
    return (swift, cxx)
}

/// The whole text under `key`, NUL bytes included.
private func cxxText(_ handle: OpaquePointer?, _ key: String) -> String {
    let value = tavuro_JsonDictionary_objectForKey(handle, key)
    defer { tavuro_JsonValue_release(value) }
    var length = 0
    guard let chars = tavuro_JsonValue_stringValue(value, &length) else { return "" }
    defer { tavuro_string_free(chars) }
    return String(decoding: UnsafeRawBufferPointer(start: chars, count: length), as: UTF8.self)
}

@Suite struct Json {
    @Test(arguments: documents)
    func gettersAnswerAsTheCxxGettersOnTheSameText(text: String) throws {
        let ours = try #require(Utils.convertToDictionary(text: text))
        let foundation = try #require(try JSONSerialization.jsonObject(with: Data(text.utf8)) as? [String: Any])
        for key in Array(ours.keys) + ["missing", "name"] {
            for dictionary in [ours, foundation] {
                let (swift, cxx) = answers(dictionary, text, key)
                #expect(swift == cxx, "key \(key)")
            }
        }
        #expect(answers(nil, text, "int").swift == ["0", "0", "", "false", "-1", "-1", "-1"])
    }

    @Test func hostMadeDictionariesAnswerAsTheirJsonText() {
        // A host's own values, each beside the JSON text it stands for.
        let host: [String: Any] = [
            "int": 12, "i8": Int8(-3), "u8": UInt8(200), "i32": Int32(7), "u64": UInt64.max, "uint": UInt(5),
            "dbl": 12.5, "whole": 3.0, "flt": Float(0.5), "big": 1e20, "t": true, "n": NSNull(),
            "s": "x", "o": ["a": 1] as [String: Any], "a": [1, 2] as [Any], "nsnum": NSNumber(value: Int64(-1)),
            "nsbool": NSNumber(value: false), "nsdbl": NSNumber(value: 2.0), "nsu": NSNumber(value: UInt32.max),
        ]
        let text = #"{"int": 12, "i8": -3, "u8": 200, "i32": 7, "u64": 18446744073709551615, "uint": 5,"#
            + #" "dbl": 12.5, "whole": 3.0, "flt": 0.5, "big": 1e20, "t": true, "n": null, "s": "x","#
            + #" "o": {"a": 1}, "a": [1, 2], "nsnum": -1, "nsbool": false, "nsdbl": 2.0, "nsu": 4294967295}"#
        for key in host.keys {
            let (swift, cxx) = answers(host, text, key)
            #expect(swift == cxx, "key \(key)")
        }
    }

    @Test func textsBecomeThePlatformsOwnValues() throws {
        for text in documents {
            let ours = try #require(Utils.convertToDictionary(text: text))
            let foundation = try #require(try JSONSerialization.jsonObject(with: Data(text.utf8)) as? NSDictionary)
            #expect(NSDictionary(dictionary: ours).isEqual(foundation))
            // And back: Foundation writes them as JSON that reads the same.
            let written = try JSONSerialization.data(withJSONObject: ours)
            let again = try #require(Utils.convertToDictionary(text: String(decoding: written, as: UTF8.self)))
            #expect(NSDictionary(dictionary: again).isEqual(foundation))
        }
        let values = try #require(Utils.convertToDictionary(text: documents[0]))
        #expect(values["int"] is NSNumber && values["t"] as? Bool == true && values["null"] is NSNull)
        #expect(values["arr"] is [Any] && values["obj"] is [String: Any] && values["text"] is String)
        for text in [nil, "[1,2]", "5", "", "{"] as [String?] {
            #expect(Utils.convertToDictionary(text: text) == nil)
        }
    }
}
