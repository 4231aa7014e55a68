// Same-run ratios of the Swift layer against Foundation's JSON reader and
// against the same calls made from C++. Prints figures; asserts nothing.
//
//   swift run -c release TavuroBenchmarks [--short] [CORPORA]
//
// CORPORA is the directory that bench/make_json_corpora.py writes (default:
// bench/corpora): python3 bench/make_json_corpora.py bench/corpora
import CTavuroBenchmarks
import Foundation
import TavuroCommon

let arguments = CommandLine.arguments.dropFirst()
let short = arguments.contains("--short")
let corpora = arguments.first { !$0.hasPrefix("--") } ?? "bench/corpora"
let rounds = short ? 3 : 15

func now() -> UInt64 { DispatchTime.now().uptimeNanoseconds }

var sink = 0

/// The best nanoseconds per call of `a` and of `b`, over `rounds` rounds of
/// `iterations` calls each, the two taking turns so that both see the same
/// load of a shared machine. `a`'s results are summed in a local, as the C++
/// side keeps its results, so that no global is touched inside the loop.
func bestNanos(_ iterations: Int, _ a: () -> Int, _ b: () -> Double) -> (Double, Double) {
    var bestA = Double.infinity, bestB = Double.infinity
    for _ in 0..<rounds {
        bestA = min(bestA, nanos(iterations, a))
        bestB = min(bestB, b())
    }
    return (bestA, bestB)
}

/// Nanoseconds per call of one round of `iterations` calls.
func nanos(_ iterations: Int, _ body: () -> Int) -> Double {
    var kept = 0
    let start = now()
    for _ in 0..<iterations { kept &+= body() }
    let spent = now() - start
    sink &+= kept
    return Double(spent) / Double(iterations)
}

func padded(_ text: String, _ width: Int) -> String {
    text.count >= width ? text : text + String(repeating: " ", count: width - text.count)
}

func figure(_ nanos: Double) -> String {
    nanos >= 1_000_000 ? String(format: "%8.2f ms", nanos / 1_000_000)
        : nanos >= 1_000 ? String(format: "%8.2f us", nanos / 1_000) : String(format: "%8.1f ns", nanos)
}

print("JSON text to [String: Any]: Utils.convertToDictionary(text:) against JSONSerialization.jsonObject")
print("corpus                size     ours         Foundation   Foundation/ours")
for name in ["d_small_answer", "a2_answer_text", "a_answer"] {
    let path = "\(corpora)/\(name).json"
    guard let data = FileManager.default.contents(atPath: path) else {
        print("no \(path): run python3 bench/make_json_corpora.py \(corpora)")
        exit(1)
    }
    let text = String(decoding: data, as: UTF8.self)
    // Enough calls for about 100 MB of text per round (a tenth with --short).
    let iterations = max(1, (short ? 10_000_000 : 100_000_000) / data.count)
    let (ours, foundation) = bestNanos(iterations, {
        Utils.convertToDictionary(text: text)?.count ?? 0
    }, {
        nanos(iterations) {
            ((try? JSONSerialization.jsonObject(with: data, options: [])) as? [String: Any])?.count ?? 0
        }
    })
    print(padded(name, 16) + String(format: "%9d  %@  %@  %6.2fx", data.count, figure(ours), figure(foundation),
                                     foundation / ours))
}

print("")
print("Swift call against the same call from C++")
print("call                              Swift        C++          Swift/C++")
let callIterations = short ? 20_000 : 200_000
setResourceDirectory(directory: "examples/host/resources")
let (swiftHeader, cxxHeader) = bestNanos(callIterations, {
    Credential.getTavuroAuthHeader()?.utf8.count ?? 0
}, { tavuro_bench_cxx_getTavuroAuthHeader(callIterations, 1) })
print(padded("Credential.getTavuroAuthHeader()", 34)
      + String(format: "%@  %@  %6.2fx", figure(swiftHeader), figure(cxxHeader), swiftHeader / cxxHeader))

let small = (try? String(contentsOfFile: "\(corpora)/d_small_answer.json", encoding: .utf8)) ?? "{}"
let dictionary = Utils.convertToDictionary(text: small)
let (swiftInt, cxxInt) = bestNanos(callIterations * 10, {
    Int(Utils.getIntValue(jsonDict: dictionary, key: "Age"))
}, { tavuro_bench_cxx_getIntValue(small, "Age", callIterations * 10, 1) })
print(padded("Utils.getIntValue(jsonDict:key:)", 34)
      + String(format: "%@  %@  %6.2fx", figure(swiftInt), figure(cxxInt), swiftInt / cxxInt))
// The floor, beyond the Swift layer's reach: the [String: Any] lookup that any getter makes, and
// the two reads of an NSNumber that tell whether it holds an integer and which.
let plain = dictionary ?? [:]
let age = plain["Age"] as? NSNumber ?? NSNumber(value: 0)
let (lookup, reads) = bestNanos(callIterations * 10, { plain["Age"] != nil ? 1 : 0 }, {
    nanos(callIterations * 10) { Int(age.objCType.pointee) &+ Int(age.int64Value) }
})
print(padded("  floor: [String: Any] lookup", 34)
      + String(format: "%@  %@  %6.2fx", figure(lookup), figure(cxxInt), lookup / cxxInt))
print(padded("  floor: + objCType, int64Value", 34)
      + String(format: "%@  %@  %6.2fx", figure(lookup + reads), figure(cxxInt), (lookup + reads) / cxxInt))
if sink == 42 { print("") }
