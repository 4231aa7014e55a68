// The library (through tavuro_fidelity_driver) against this platform's Foundation on the same generated inputs;
// every disagreement gets a named kind. fidelity --driver PATH (--ci | --inputs N) [--seed S] [--areas a,b]: --ci 100,000
// per area, --inputs N: N for JSON and base64, N/10 for the rest. Exit 1: unexplained kinds. FIDELITY_DUMP=FILE lists all.
import Foundation

struct Rng {  // SplitMix64: the same seed gives the same inputs everywhere
  var state: UInt64
  mutating func next() -> UInt64 {
    state &+= 0x9E37_79B9_7F4A_7C15
    let z = ((state ^ (state >> 30)) &* 0xBF58_476D_1CE4_E5B9), y = (z ^ (z >> 27)) &* 0x94D0_49BB_1331_11EB; return y ^ (y >> 31)
  }
  mutating func int(_ n: Int) -> Int { Int(next() % UInt64(max(n, 1))) }
  mutating func pick<T>(_ list: [T]) -> T { list[int(list.count)] }
  mutating func percent(_ p: Int) -> Bool { int(100) < p }
  mutating func text(_ pieces: [String], _ most: Int) -> String { (0..<int(most + 1)).map { _ in pick(pieces) }.joined() }
}

func words(_ table: String) -> [String] { table.components(separatedBy: "|") }
func u32(_ value: Int) -> [UInt8] { (0..<4).map { UInt8((value >> (8 * $0)) & 0xFF) } }
func le32(_ bytes: ArraySlice<UInt8>) -> Int { bytes.enumerated().reduce(0) { $0 | Int($1.element) << (8 * $1.offset) } }
func tagged(_ text: [UInt8]) -> [UInt8] { Array("s\(text.count):".utf8) + text }
func tagged(_ text: String) -> [UInt8] { tagged(Array(text.utf8)) }
func byUtf8(_ a: String, _ b: String) -> Bool { a.utf8.lexicographicallyPrecedes(b.utf8) }
let absent: [UInt8] = [33]  // "!"

final class Driver {  // batches of requests down one pipe, their answers up another (see driver.cpp)
  let process = Process(), requests = Pipe(), answers = Pipe()
  var buffer = [UInt8](), at = 0
  init(_ path: String) throws {
    (process.executableURL, process.standardInput, process.standardOutput) = (URL(fileURLWithPath: path), requests, answers); try process.run()
  }
  func send(_ op: UInt8, _ inputs: [[UInt8]]) { requests.fileHandleForWriting.write(Data(inputs.reduce(u32(inputs.count)) { $0 + [op] + u32($1.count) + $1 })) }
  func take(_ count: Int) -> [UInt8] {
    while buffer.count - at < count {
      let chunk = answers.fileHandleForReading.availableData; precondition(!chunk.isEmpty, "the driver stopped"); (buffer, at) = (Array(buffer[at...]) + chunk, 0)
    }
    defer { at += count }; return Array(buffer[at..<at + count])
  }
}

struct Area {
  let name: String, op: Character, big: Bool, generate: (inout Rng, Int) -> [UInt8], foundation: ([UInt8]) -> [UInt8]
  var classify: ([UInt8], [UInt8], [UInt8]) -> String = plainKind
}
let plainKind = { (_: [UInt8], ours: [UInt8], theirs: [UInt8]) in ours == absent ? "we-reject" : theirs == absent ? "we-accept-foundation-rejects" : "differs" }

let explained = ["duplicate-key": "a key repeated in one object: we keep the first value, as the phone does",
  "trailing-comma": "[1,] and {\"a\":1,}: Foundation tolerates them, we follow RFC 8259", "underflow-to-zero": "1e-400: Foundation reads 0, the phone and we reject it",
  "decimal-number": "more digits than a double holds: Foundation keeps a decimal, we the nearest double",
  "old-text-format": "Foundation reads the old text format too (even blank text); we read XML and binary",
  "canonically-equal-keys": "keys equal only under Unicode normalisation: Swift here merges them, we keep both",
  "bom-in-string": "a U+FEFF right after an escape in a string: Foundation here drops it, RFC 8259 and we keep it"]

// The tree as driver.cpp writes it, numbers through Int64(exactly:) and Double(exactly:). With `rounded` 1 or 2,
// a decimal Foundation kept is read as the integer its text names (1 only) or else as the nearest double.
func jsonTree(_ value: Any, _ out: inout [UInt8], rounded: Int) {
  func number(_ integer: Int64, _ real: Double) { out += Array("#\(integer),\(String(real.bitPattern, radix: 16));".utf8) }
  if let object = value as? [String: Any] {
    out += [123] + object.keys.sorted(by: byUtf8).flatMap { key in tagged(key) + foundationTree(object[key]!, rounded) } + [125]
  } else if let array = value as? [Any] {
    out += [91] + array.flatMap { foundationTree($0, rounded) } + [93]
  } else if let n = value as? NSNumber {
    let text = n.stringValue, integer = Int64(text), unsigned = UInt64(text), real = Double(text) ?? 0
    if String(cString: n.objCType) == "c" { out += Array((n.boolValue ? "T" : "F").utf8) }
    else if rounded == 0 || !(n is NSDecimalNumber) { number(Int64(exactly: n) ?? 0, Double(exactly: n) ?? 0) }
    else if rounded == 1, let integer = integer { number(integer, Double(exactly: integer) ?? 0) }
    else if rounded == 1, let unsigned = unsigned { number(0, Double(exactly: unsigned) ?? 0) }
    else { number(Int64(exactly: real) ?? 0, real) }
  } else {
    out += (value as? String).map(tagged) ?? Array("n".utf8)
  }
}
func foundationTree(_ value: Any, _ rounded: Int) -> [UInt8] { var out = [UInt8](); jsonTree(value, &out, rounded: rounded); return out }
func foundationJson(_ input: [UInt8], rounded: Int = 0) -> [UInt8] { (try? JSONSerialization.jsonObject(with: Data(input))).map { foundationTree($0, rounded) } ?? absent }

// Whether an object of a UTF-8 JSON text names a key twice ("exact"), or two equal under normalisation ("canonical").
func repeatsKey(_ text: [UInt8]) -> String? {
  var inObject = [Bool](), keys = [Set<String>](), exact = [Set<[UInt8]>](), canonical = false, i = 0
  while i < text.count {
    switch text[i] {
    case UInt8(ascii: "{"): (inObject, keys, exact) = (inObject + [true], keys + [[]], exact + [[]])
    case UInt8(ascii: "["): inObject.append(false)
    case UInt8(ascii: "}"), UInt8(ascii: "]"): if inObject.popLast() == true { (_, _) = (keys.popLast(), exact.popLast()) }
    case UInt8(ascii: "\""):
      let start = i; i += 1
      while i < text.count, text[i] != UInt8(ascii: "\"") { i += text[i] == 92 ? 2 : 1 }
      let colon = text[min(i + 1, text.count)...].first { ![9, 10, 13, 32].contains($0) }
      guard colon == UInt8(ascii: ":"), inObject.last == true, i < text.count else { break }
      let key = (try? JSONSerialization.jsonObject(with: Data("[".utf8 + text[start...i] + "]".utf8)) as? [String])?.first ?? ""
      if !exact[exact.count - 1].insert(Array(key.utf8)).inserted { return "exact" }
      canonical = canonical || !keys[keys.count - 1].insert(key).inserted
    default: break
    }
    i += 1
  }
  return canonical ? "canonical" : nil
}

func tokens(_ tree: [UInt8]) -> [ArraySlice<UInt8>] {  // a tree cut into texts, numbers and single marks
  var out = [ArraySlice<UInt8>](), i = 0
  while i < tree.count {
    var end = i + 1
    if tree[i] == UInt8(ascii: "s"), let colon = tree[i...].firstIndex(of: UInt8(ascii: ":")) {
      end = min(tree.count, colon + 1 + (Int(String(decoding: tree[(i + 1)..<colon], as: UTF8.self)) ?? 0))
    } else if tree[i] == UInt8(ascii: "#") { end = (tree[i...].firstIndex(of: UInt8(ascii: ";")) ?? i) + 1 }
    out.append(tree[i..<end]); i = end
  }
  return out
}

func asUtf8(_ input: [UInt8]) -> [UInt8] {  // a UTF-16 or UTF-32 text (told by its zero bytes) as UTF-8
  guard input.count >= 4, input.prefix(4).contains(0) else { return input }
  let text = ([.utf32, .utf32LittleEndian, .utf32BigEndian, .utf16, .utf16LittleEndian, .utf16BigEndian] as [String.Encoding]).lazy.compactMap { String(data: Data(input), encoding: $0) }
    .first { $0.unicodeScalars.first { !" \t\r\n\u{feff}".unicodeScalars.contains($0) }.map { "{[".unicodeScalars.contains($0) } ?? false }
  return text.map { Array($0.utf8) } ?? input
}

func classifyJson(_ input: [UInt8], _ ours: [UInt8], _ theirs: [UInt8]) -> String {
  let message = String(decoding: ours.dropFirst(), as: UTF8.self)
  switch (ours.first == 33, theirs == absent) {
  case (false, true): return "we-accept-foundation-rejects"
  case (true, false):
    if message.hasPrefix("Unexpected character ']'") || message.hasPrefix("Unexpected character '}'") { return "trailing-comma" }
    return message.hasPrefix("Number too large or too small") ? "underflow-to-zero" : "we-reject"
  default:
    let (a, b, c) = (tokens(ours), tokens(foundationJson(input, rounded: 1)), tokens(foundationJson(input, rounded: 2)))
    if a.count == b.count, b.count == c.count, zip(a, zip(b, c)).allSatisfy({ $0 == $1.0 || $0 == $1.1 }) { return "decimal-number" }
    let repeated = repeatsKey(asUtf8(input))
    if repeated == nil, contains(Array(input.dropFirst(3)), "\u{feff}"), foundationJson(Array(String(decoding: input, as: UTF8.self).replacingOccurrences(of: "\u{feff}", with: "").utf8)) == theirs { return "bom-in-string" }
    return repeated == "exact" ? "duplicate-key" : repeated == "canonical" ? "canonically-equal-keys" : "tree-differs"
  }
}

let jsonPieces = words("a|Z|0| |é|日本|😀|e\u{301}|\\n|\\\"|\\\\|\\/|\\b|\\f|\\r|\\t|\\u0041|\\u00e9|\\ud83d\\ude00|\\u0000|\\u001f|\\uFFFF|\u{7f}|\u{ffff}|\u{10ffff}|\u{2028}")
let jsonKeys = words("a|b|A|é|e\u{301}||\\u0061|exp|😀|a b")
let jsonNumbers = words("0|-0|-0.0|0.0|1|-1|3.0|3.5|1e2|1E+2|1e-2|0.1|1e19|-1e19|1e400|-1e400|1e-400|2.5e-324|4.9e-324|"
  + "2.2250738585072014e-308|1.7976931348623157e308|1.7976931348623159e308|9007199254740993|9007199254740993.0|"
  + "9223372036854775807|9223372036854775808|-9223372036854775808|-9223372036854775809|18446744073709551615|"
  + "18446744073709551616|123456789012345678901234567890|0.30000000000000004|1e-320|12.5|1.0e+0|1700000000|1700000000.0")
let gaps = ["", "", "", " ", "\n", "\t", "\r\n"]

func jsonValue(_ r: inout Rng, _ depth: Int) -> String {
  let gap = r.pick(gaps)
  switch r.int(depth > 3 ? 5 : 7) {
  case 0, 1: return "\"" + r.text(jsonPieces, 5) + "\""
  case 2: return r.pick(["true", "false", "null"])
  case 3: if r.percent(50) { return r.pick(jsonNumbers) }
    let digits = String(r.next() >> r.int(64))
    return (r.percent(30) ? "-" : "") + digits + (r.percent(40) ? ".\(r.int(1000))" : "") + (r.percent(20) ? "e\(r.int(700) - 350)" : "")
  case 4, 5: return "[" + (0..<r.int(5)).map { _ in gap + jsonValue(&r, depth + 1) }.joined(separator: ",") + "]"
  default: return jsonObject(&r, depth)
  }
}

func jsonObject(_ r: inout Rng, _ depth: Int) -> String {
  var keys = Set<String>(); for _ in 0..<r.int(5) { keys.insert(r.pick(jsonKeys)) }
  return "{" + keys.sorted().map { "\"\($0)\"" + r.pick(gaps) + ":" + jsonValue(&r, depth + 1) }.joined(separator: ",") + r.pick(gaps) + "}"
}

func mutate(_ r: inout Rng, _ text: [UInt8], _ special: [UInt8]) -> [UInt8] {
  var out = text; let at = r.int(out.count + 1)
  switch r.int(4) {
  case 0: out.removeSubrange(at...)
  case 1 where at < out.count: out[at] = r.percent(50) ? r.pick(special) : UInt8(r.int(256))
  case 2: out.insert(r.percent(50) ? r.pick(special) : UInt8(r.int(256)), at: at)
  default: if at < out.count { out.remove(at: at) }
  }
  return out
}

func generateJson(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let doc = r.percent(80) ? jsonObject(&r, 0) : jsonValue(&r, 2)
  switch r.int(12) {
  case 0, 1: return mutate(&r, Array(doc.utf8), Array(",]}\"\\:0 \t\u{0b}".utf8) + [0, 0x80, 0xC3, 0xFF])
  case 2:  // a trailing comma
    let closers = doc.indices.filter { "]}".contains(doc[$0]) }
    guard let at = closers.isEmpty ? nil : closers[r.int(closers.count)] else { return Array(doc.utf8) }; return Array((doc[..<at] + "," + doc[at...]).utf8)
  case 3:
    let key = r.pick(jsonKeys); return Array("{\"\(key)\":\(jsonValue(&r, 3)),\"\(key)\":\(jsonValue(&r, 3))}".utf8)
  case 4: let (encoding, mark): (String.Encoding, [UInt8]) = r.pick([(.utf16LittleEndian, [0xFF, 0xFE]), (.utf16BigEndian, [0xFE, 0xFF]),
      (.utf32LittleEndian, [0xFF, 0xFE, 0, 0]), (.utf32BigEndian, [0, 0, 0xFE, 0xFF]), (.utf8, [0xEF, 0xBB, 0xBF])])
    return (r.percent(50) ? mark : []) + Array(doc.data(using: encoding)!)
  case 5: let open = (0..<500 + r.int(20)).map { _ in r.percent(50) ? "[" : "{\"k\":" }
    return Array((open.joined() + "1" + open.reversed().map { $0 == "[" ? "]" : "}" }.joined()).utf8)
  default: return Array(doc.utf8)
  }
}

let alphabet = Array("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/".utf8)
let junk: [[UInt8]] = [[32], [10], [33], [46], [0], [0xC3, 0xA9], [0xFF], [0x80], [13], [9]]

// Every length up to 64 in turn and random ones up to 300.
func generateBase64(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let length = index % 3 == 0 ? r.int(300) : (index / 3) % 65
  var out = [UInt8]()
  if r.percent(30) {
    out = Array(Data((0..<length * 3 / 4).map { _ in UInt8(r.int(256)) }).base64EncodedString().utf8)
    for _ in 0..<r.int(3) where !out.isEmpty { out = mutate(&r, out, Array("=-_ A".utf8)) }
    return out
  }
  while out.count < length {
    let roll = r.int(100)
    out += roll < 75 ? [r.pick(alphabet)] : roll < 83 ? [61] : roll < 88 ? [45] : roll < 93 ? [95] : r.pick(junk)
  }
  return out
}

func decoded(_ input: [UInt8]) -> [UInt8] { Data(base64Encoded: Data(input), options: .ignoreUnknownCharacters).map { [61] + Array($0) } ?? absent }

func base64Url(_ input: [UInt8]) -> [UInt8] {  // the JWT parser's steps, then Foundation
  let text = input.map { $0 == 45 ? 43 : $0 == 95 ? 47 : $0 }, n = Double(text.count)
  return decoded(text + Array(repeating: 61, count: Int((n * 0.25).rounded(.up) * 4 - n)))
}

let userPieces = words("a|Z|9|:| |é|日|😀|+|/|=|\u{0}|\u{7f}|ÿ")

func generateCredentials(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let user = Array(r.text(userPieces, index % 40).utf8)
  return u32(user.count) + user + Array(r.text(userPieces, r.int(40)).utf8)
}

func basicHeader(_ input: [UInt8]) -> [UInt8] {
  let size = le32(input[0..<4]), text = String(decoding: input[4..<4 + size], as: UTF8.self) + ":" + String(decoding: input[(4 + size)...], as: UTF8.self)
  return Array(("Basic " + Data(text.utf8).base64EncodedString()).utf8)
}

// The text entries of a dictionary root, as the phone's NSDictionary holds them: keys of other kinds (a
// binary list may have numbers, dates or data as keys) are passed over, not a reason to refuse the file.
func foundationPlist(_ input: [UInt8]) -> [UInt8] {
  guard let root = try? PropertyListSerialization.propertyList(from: Data(input), format: nil),
    let dictionary = root as? [AnyHashable: Any] else { return absent }
  let texts = dictionary.compactMap { entry in (entry.key.base as? String).flatMap { key in (entry.value as? String).map { (key, $0) } } }
  return texts.sorted { byUtf8($0.0, $1.0) }.flatMap { tagged($0.0) + tagged($0.1) }
}

func contains(_ input: [UInt8], _ piece: String) -> Bool {
  let p = Array(piece.utf8); return input.count >= p.count && (0...(input.count - p.count)).contains { input[$0..<$0 + p.count].elementsEqual(p) }
}

func classifyPlist(_ input: [UInt8], _ ours: [UInt8], _ theirs: [UInt8]) -> String {
  var format = PropertyListSerialization.PropertyListFormat.xml
  _ = try? PropertyListSerialization.propertyList(from: Data(input), options: [], format: &format)
  if ours == absent, theirs != absent, format == .openStep { return "old-text-format" }
  if ours != absent, theirs != absent, contains(input, "\u{e9}"), contains(input, "e\u{301}") { return "canonically-equal-keys" }
  if ours == absent, theirs != absent, !input.starts(with: Array("bplist".utf8)), String(validatingUTF8: input.map { CChar(bitPattern: $0) } + [0]) == nil { return "not-utf8" }
  return plainKind(input, ours, theirs)
}

let xmlPieces = words("a|Z| |é|😀|&lt;|&gt;|&amp;|&apos;|&quot;|&#65;|&#x1F600;|&#xE9;|<![CDATA[<&>]]>|<!-- c -->|\n|\t|\r|>|]]>|\u{7f}|\u{1}")
let plistKeys = words("a|b|é|e\u{301}|&amp;|tavuro_username|| ")
let prologs = ["<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\""
  + " \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"] + words("|<?xml version=\"1.0\"?>|<!-- note -->\n|\u{FEFF}| \n|<?xml encoding='utf8'?>")
let xmlScalars = words("<string/>|<true/>|<false/>|<integer>0</integer>|<integer>-5</integer>|<integer>0x1F</integer>|"
  + "<integer>18446744073709551615</integer>|<integer> 7 </integer>|<integer>+3</integer>|<integer>-9223372036854775809</integer>|"
  + "<real>1.5</real>|<real>-0</real>|<real>nan</real>|<real>-inf</real>|<real>.5</real>|<real>1e400</real>|"
  + "<date>2020-01-01T00:00:00Z</date>|<date>1582-10-15T12:00:00Z</date>|<date>2020-13-01</date>|<data>AAEC</data>|"
  + "<data></data>|<data>AA EC\n</data>|<data>SGVsbG8=</data>|<array/>|<dict/>|<date>582-02-30T24:00:00Z</date>|"
  + "<integer>\u{10}-\u{3000}7</integer>|<integer>&#55;</integer>|<real>\u{a0}-1</real>")

func xmlValue(_ r: inout Rng, _ depth: Int) -> String {
  switch r.int(depth > 2 ? 7 : 9) {
  case 0, 1, 2: return "<string>" + r.text(xmlPieces, 5) + "</string>"
  case 3, 4, 5, 6: return r.pick(xmlScalars)
  case 7: return "<array>" + (0..<r.int(4)).map { _ in xmlValue(&r, depth + 1) }.joined() + "</array>"
  default: return xmlDict(&r, depth + 1)
  }
}

func xmlDict(_ r: inout Rng, _ depth: Int) -> String {
  "<dict>" + (0..<r.int(5)).map { _ in r.pick(["", "\n\t"]) + "<key>" + r.text(plistKeys, 2) + "</key>" + r.pick(["", "\n\t"]) + xmlValue(&r, depth) }.joined() + "\n</dict>"
}

func generateXml(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let body = r.percent(90) ? xmlDict(&r, 0) : xmlValue(&r, 0)
  let doc = Array((r.pick(prologs) + "<plist version=\"1.0\">\n" + body + "\n</plist>\n").utf8)
  let roll = r.int(10)
  return roll < 4 ? doc : roll == 4 ? Array(String(decoding: doc, as: UTF8.self).replacingOccurrences(of: "&amp;", with: "&nbsp;").utf8)
    : mutate(&r, doc, Array("<>/&;!?[]\" \n".utf8) + [0, 0xFF])
}

func plistObject(_ r: inout Rng, _ depth: Int) -> Any {
  switch r.int(depth > 2 ? 7 : 9) {
  case 0, 1, 2: return r.text(userPieces + ["\u{ffff}", "\u{10ffff}", "日本語", "<&>"], 8)
  case 3: return Int64(bitPattern: r.next() >> r.int(64))
  case 4: return Double(r.int(1000)) / 8
  case 5: return r.percent(50)
  case 6: return r.percent(50) ? Date(timeIntervalSince1970: Double(r.int(1 << 31))) : Data(u32(r.int(1 << 30)))
  case 7: return (0..<r.int(4)).map { _ in plistObject(&r, depth + 1) }
  default: return binaryDictionary(&r, depth + 1)
  }
}

func binaryDictionary(_ r: inout Rng, _ depth: Int) -> [String: Any] {
  var dictionary = [String: Any]()
  for _ in 0..<r.int(6) { dictionary[r.text(plistKeys + userPieces, 3)] = plistObject(&r, depth) }
  return dictionary
}

// Foundation's own files, some changed; Foundation here crashes bridging a
// set (marker 0xC_) that a change made, so no change writes one.
func generateBinary(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let root: Any = r.percent(95) ? binaryDictionary(&r, 0) : plistObject(&r, 2)
  var out = Array(try! PropertyListSerialization.data(fromPropertyList: root, format: .binary, options: 0))
  if r.percent(40) { return out }
  if r.percent(50) {
    let at = out.count - 1 - r.int(32); out[at] = r.percent(50) ? out[at] &+ UInt8(r.int(3)) &- 1 : UInt8(r.int(256))
  } else { out = mutate(&r, out, [0, 1, 8, 0x5F, 0x6F, 0xD1, 0xA1, 0xFF]) }
  return out.map { $0 & 0xF0 == 0xC0 ? $0 ^ 0x20 : $0 }
}

let writePieces = words("a|Z|é|😀|\u{e000}|\u{ffff}|<|>|&|\"|'|\u{1}|\u{1f}|\u{7f}|\r|\n|\t| |]]>|\u{85}|日")

func generateWrite(_ r: inout Rng, _ index: Int) -> [UInt8] {
  var entries = [[UInt8]: [UInt8]]()
  for _ in 0..<r.int(6) { entries[Array(r.text(writePieces, 3).utf8)] = Array(r.text(writePieces, 6).utf8) }
  return entries.keys.sorted { $0.lexicographicallyPrecedes($1) }.flatMap { tagged($0) + tagged(entries[$0]!) }
}

func foundationWrite(_ input: [UInt8]) -> [UInt8] {
  let texts = tokens(input).map { String(decoding: $0.drop { $0 != 58 }.dropFirst(), as: UTF8.self) }, dictionary = NSMutableDictionary()
  for i in stride(from: 0, to: texts.count, by: 2) { dictionary.setObject(NSString(string: texts[i + 1]), forKey: NSString(string: texts[i])) }
  return (try? PropertyListSerialization.data(fromPropertyList: dictionary, format: .xml, options: 0)).map { Array($0) } ?? absent
}

let formatter = { let f = DateFormatter(); (f.dateFormat, f.timeZone) = ("MM-dd-yyyy", TimeZone(abbreviation: "GMT") ?? TimeZone.current); return f }()

func foundationDate(_ input: [UInt8]) -> [UInt8] {
  Array(formatter.string(from: Date(timeIntervalSince1970: Double(Int64(String(decoding: input.dropFirst(6).dropLast(2), as: UTF8.self))! / 1000))).utf8)
}

// In turn: anywhere, in the calendar's range, within 10,000 years, every day boundary out from 1582-10-15 (and a
// second either side), near year 1, near the range's limits, near today, near 1970.
func generateDate(_ r: inout Rng, _ index: Int) -> [UInt8] {
  let j = index / 8, limits: [Int64] = [-184_303_902_528_000_000, 183_882_168_921_600_000, .min, .max]
  var ms: Int64
  switch index % 8 {
  case 0: ms = Int64(bitPattern: r.next())
  case 1: ms = Int64(bitPattern: r.next()) % 184_303_902_528_000_000
  case 2: ms = Int64(bitPattern: r.next()) % 320_000_000_000_000
  case 3: ms = (-12_219_292_800 + Int64(j / 6) * (j / 3 % 2 == 0 ? 1 : -1) * 86_400 + [0, -1, 1][j % 3]) * 1000
  case 4: ms = (-62_135_596_800 + Int64(r.int(6 * 31_622_400)) - 3 * 31_622_400) * 1000 + Int64(r.int(1000))
  case 5: let (near, overflow) = r.pick(limits).addingReportingOverflow(Int64(r.int(2_000_000_000_000)) - 1_000_000_000_000); ms = r.percent(10) ? r.pick(limits) : overflow ? Int64.max : near
  case 6: ms = Int64(r.int(4_000_000_000_000)) - 2_000_000_000_000
  default: ms = Int64(r.int(200_000)) - 100_000
  }
  return Array("/Date(\(ms))/".utf8)
}

let areas = [
  Area(name: "json", op: "J", big: true, generate: generateJson, foundation: { foundationJson($0) }, classify: classifyJson),
  Area(name: "base64", op: "B", big: true, generate: generateBase64, foundation: decoded), Area(name: "base64url", op: "U", big: true, generate: generateBase64, foundation: base64Url),
  Area(name: "basic-header", op: "H", big: true, generate: generateCredentials, foundation: basicHeader), Area(name: "plist-xml", op: "P", big: false, generate: generateXml, foundation: foundationPlist, classify: classifyPlist),
  Area(name: "plist-binary", op: "P", big: false, generate: generateBinary, foundation: foundationPlist, classify: classifyPlist),
  Area(name: "plist-write", op: "W", big: false, generate: generateWrite, foundation: foundationWrite), Area(name: "dates", op: "D", big: false, generate: generateDate, foundation: foundationDate),
]

func show(_ bytes: [UInt8], whole: Bool = false) -> String {
  bytes.prefix(whole ? bytes.count : 160).map { (32..<127).contains($0) && $0 != 92 ? String(UnicodeScalar($0)) : String(format: "\\x%02x", $0) }.joined() + (!whole && bytes.count > 160 ? "... (\(bytes.count) bytes)" : "")
}

let dump = ProcessInfo.processInfo.environment["FIDELITY_DUMP"].flatMap { FileManager.default.createFile(atPath: $0, contents: nil) ? FileHandle(forWritingAtPath: $0) : nil }

func run(_ area: Area, count: Int, seed: UInt64, driver: Driver) -> Bool {
  var r = Rng(state: area.name.utf8.reduce(seed) { ($0 ^ UInt64($1)) &* 0x100_0000_01B3 })
  var kinds = [String: (count: Int, index: Int, input: [UInt8], ours: [UInt8], theirs: [UInt8])](), agreed = 0, index = 0
  let started = Date()
  while index < count {
    let inputs = (0..<min(4096, count - index)).map { area.generate(&r, index + $0) }
    driver.send(area.op.asciiValue!, inputs)
    for (i, (input, theirs)) in zip(inputs, inputs.map(area.foundation)).enumerated() {
      let ours = driver.take(le32(driver.take(4)[...]))
      if ours == theirs || (ours.first == 33 && theirs == absent) { agreed += 1; continue }
      let kind = area.classify(input, ours, theirs), old = kinds[kind]
      dump?.write("\(area.name)\t\(kind)\t\(show(input, whole: true))\t\(show(ours))\t\(show(theirs))\n".data(using: .utf8)!)
      kinds[kind] = old == nil || input.count < old!.input.count ? ((old?.count ?? 0) + 1, index + i, input, ours, theirs) : (old!.count + 1, old!.index, old!.input, old!.ours, old!.theirs)
    }
    index += inputs.count
  }
  print(String(format: "%@: %d compared, %d agreed (%.4f%%) in %.1f s", area.name, count, agreed, 100 * Double(agreed) / Double(max(count, 1)), Date().timeIntervalSince(started)))
  for (name, kind) in kinds.sorted(by: { $0.key < $1.key }) {
    print("  \(name): \(kind.count) \(explained[name].map { "(explained: \($0))" } ?? "UNEXPLAINED")")
    print("    example (input \(kind.index)): \(show(kind.input))\n    library:    \(show(kind.ours))\n    Foundation: \(show(kind.theirs))")
  }
  return kinds.keys.allSatisfy { explained[$0] != nil }
}

// Swift seeds its hashing per process, and the binary lists Foundation writes
// follow the order of a dictionary: start again with it fixed.
if ProcessInfo.processInfo.environment["SWIFT_DETERMINISTIC_HASHING"] == nil {
  setenv("SWIFT_DETERMINISTIC_HASHING", "1", 1); execv("/proc/self/exe", CommandLine.unsafeArgv)
}
var seed: UInt64 = 20_261_123, bigCount = 100_000, smallCount = 100_000, driverPath = "", only = Set<String>()
var arguments = Array(CommandLine.arguments.dropFirst())
while !arguments.isEmpty {
  let flag = arguments.removeFirst(), value = flag == "--ci" || arguments.isEmpty ? "" : arguments.removeFirst()
  switch flag {
  case "--driver": driverPath = value
  case "--ci": (bigCount, smallCount) = (100_000, 100_000)
  case "--inputs": (bigCount, smallCount) = (Int(value)!, Int(value)! / 10)
  case "--seed": seed = UInt64(value)!
  case "--areas": only = Set(value.split(separator: ",").map(String.init))
  default: print("unknown argument \(flag)"); exit(2)
  }
}
let driver = try Driver(driverPath); print("seed \(seed); \(bigCount) inputs for json and base64, \(smallCount) for the others")
let ok = areas.filter { only.isEmpty || only.contains($0.name) }.map { run($0, count: $0.big ? bigCount : smallCount, seed: seed, driver: driver) }.allSatisfy { $0 }
print(ok ? "every disagreement is explained" : "UNEXPLAINED disagreements: see above")
exit(ok ? 0 : 1)
