// Differential test against RapidJSON (full precision, UTF-8 validation):
// generated documents must read to the same values, and mutated documents
// that RapidJSON rejects must be rejected by ours too.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "common/JsonAccess.h"

namespace tavuro {
namespace {

constexpr unsigned kOracleFlags =
    rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;

// Random documents: nesting, repeated keys, escapes and Unicode, integers at
// the 64-bit edges, doubles of every magnitude and digit count.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}

  std::string document() {
    std::string text;
    container(text, 0);
    return text;
  }
  std::uint64_t below(std::uint64_t n) { return random_() % n; }

 private:
  void container(std::string& text, int depth) {
    const bool object = below(2) == 0;
    // Sometimes more members than the size from which objects are indexed.
    const std::uint64_t count = below(7) == 0 ? 16 + below(30) : below(8);
    text += object ? '{' : '[';
    for (std::uint64_t i = 0; i < count; ++i) {
      text += i ? "," : "";
      text += kSpaces[below(6)];
      if (object) {
        if (below(3) == 0) {
          text += "\"k" + std::to_string(below(6)) + "\"";  // keys that repeat
        } else {
          string(text);
        }
        text += std::string(kSpaces[below(6)]) + ":";
      }
      value(text, depth);
      text += kSpaces[below(6)];
    }
    text += object ? '}' : ']';
  }

  void value(std::string& text, int depth) {
    switch (below(depth >= 5 ? 6 : 8)) {
      case 0: text += below(3) == 0 ? "null" : below(2) ? "true" : "false"; break;
      case 1: integer(text); break;
      case 2:
      case 3: floating(text); break;
      case 4:
      case 5: string(text); break;
      default: container(text, depth + 1); break;
    }
  }

  void integer(std::string& text) {
    static const char* const kEdges[] = {"0",
                                         "9223372036854775807",
                                         "-9223372036854775808",
                                         "9223372036854775808",
                                         "18446744073709551615",
                                         "18446744073709551616",
                                         "-9223372036854775809",
                                         "9007199254740993",
                                         "123456789012345678901234"};
    const auto random = static_cast<std::int64_t>(random_()) >> below(64);
    // "-0" reads as an integer here and as a double there, on purpose.
    text += below(3) == 0 ? kEdges[below(std::size(kEdges))] : std::to_string(random ? random : 1);
  }

  void floating(std::string& text) {
    char buffer[64];
    double d = 0;
    const std::uint64_t bits = random_();
    std::memcpy(&d, &bits, sizeof d);
    switch (below(3)) {
      case 0:  // any finite double with 1 to 17 digits, or a subnormal
        if (!std::isfinite(d)) d = std::ldexp(static_cast<double>(bits >> 12), -1074);
        std::snprintf(buffer, sizeof buffer, "%.*g", static_cast<int>(1 + below(17)), d);
        // Fewer digits can round the largest doubles up past the range.
        if (std::isinf(std::strtod(buffer, nullptr)))
          std::snprintf(buffer, sizeof buffer, "%.17g", d);
        break;
      case 1:  // short decimals with small exponents: the exact fast path
        std::snprintf(buffer, sizeof buffer, "%d.%de%d", static_cast<int>(below(100000)),
                      static_cast<int>(below(1000000000)), static_cast<int>(below(45)) - 22);
        break;
      default:  // 17 to 19 significant digits
        std::snprintf(buffer, sizeof buffer, "-%d%d.%dE+%d", static_cast<int>(1 + below(9)),
                      static_cast<int>(below(100000000)), static_cast<int>(below(1000000000)),
                      static_cast<int>(below(280)));
    }
    const std::string number = buffer;
    // A whole number must stay a double: "1e+20" is one, "12" would not be.
    text += number.find_first_of(".eE") == std::string::npos ? number + ".0" : number;
  }

  void string(std::string& text) {
    static const char* const kPieces[] = {"a",
                                          "Key",
                                          " ",
                                          "\\\"",
                                          "\\\\",
                                          "\\/",
                                          "\\b\\f\\n\\r\\t",
                                          "\\u0000",
                                          "\\u00e9",
                                          "\\u20AC",
                                          "\\ud83d\\ude00",
                                          "\\uFFFF",
                                          "\xC3\xA9",
                                          "\xE2\x82\xAC",
                                          "\xF0\x9F\x98\x80",
                                          "0123456789abcdef0123456789abcdef"};
    text += '"';
    for (std::uint64_t i = below(6); i > 0; --i) text += kPieces[below(std::size(kPieces))];
    text += '"';
  }

  static constexpr const char* kSpaces[] = {"", "", "", " ", "\n  ", "\t\r\n"};
  std::mt19937_64 random_;
};

// Empty when equal; otherwise what differs and where.
std::string compare(const JsonValue& ours, const rapidjson::Value& theirs,
                    const std::string& path) {
  const auto same = [&](bool equal, const char* what) {
    return equal ? "" : what + (" at " + path);
  };
  switch (ours.kind()) {
    case JsonValue::Kind::Null: return same(theirs.IsNull(), "null");
    case JsonValue::Kind::Boolean:
      return same(theirs.IsBool() && theirs.GetBool() == *ours.boolValue(), "boolean");
    case JsonValue::Kind::String:
      return same(
          theirs.IsString() &&
              std::string_view(theirs.GetString(), theirs.GetStringLength()) == *ours.stringValue(),
          "string");
    case JsonValue::Kind::Number: {
      const JsonValue::NumberKind kind = *ours.numberKind();
      if (kind == JsonValue::NumberKind::Int64) {
        return same(
            theirs.IsInt64() && !theirs.IsDouble() && theirs.GetInt64() == *ours.int64Value(),
            "int64");
      }
      if (kind == JsonValue::NumberKind::UInt64) {
        return same(
            theirs.IsUint64() && !theirs.IsInt64() && theirs.GetUint64() == *ours.uint64Value(),
            "uint64");
      }
      const double a = *ours.doubleValue();
      const double b = theirs.IsDouble() ? theirs.GetDouble() : std::nan("");
      return same(std::memcmp(&a, &b, sizeof a) == 0, "double bits");
    }
    case JsonValue::Kind::Array: {
      const JsonArray array = *ours.arrayValue();
      if (!theirs.IsArray() || array.size() != theirs.Size()) return same(false, "array");
      for (rapidjson::SizeType i = 0; i < theirs.Size(); ++i) {
        std::string difference = compare(array[i], theirs[i], path + "[" + std::to_string(i) + "]");
        if (!difference.empty()) return difference;
      }
      return "";
    }
    case JsonValue::Kind::Object: {
      if (!theirs.IsObject()) return same(false, "object");
      // Theirs keeps repeated keys; ours keeps the first of each, in order.
      const JsonDictionary object = *ours.dictionaryValue();
      std::size_t index = 0;
      for (auto member = theirs.MemberBegin(); member != theirs.MemberEnd(); ++member) {
        if (theirs.FindMember(member->name) != member) continue;  // a later repeat
        const std::string_view key(member->name.GetString(), member->name.GetStringLength());
        if (index >= object.size() || object.keyAt(index) != key || !object.find(key)) {
          return same(false, "key");
        }
        std::string difference =
            compare(object.valueAt(index++), member->value, path + "." + std::string(key));
        if (!difference.empty()) return difference;
      }
      return same(index == object.size(), "object size");
    }
  }
  return same(false, "kind");
}

TEST(JsonOracle, GeneratedDocumentsReadTheSame) {
  Generator generator(20240607);
  for (int i = 0; i < 4000; ++i) {
    const std::string text = generator.document();
    rapidjson::Document theirs;
    theirs.Parse<kOracleFlags>(text.data(), text.size());
    ASSERT_FALSE(theirs.HasParseError()) << "generator made bad JSON: " << text;
    const detail::JsonReadResult ours = detail::readJson(text);
    ASSERT_TRUE(ours.value) << ours.errorDescription << "\n" << text;
    ASSERT_EQ(compare(*ours.value, theirs, "$"), "") << text;
  }
}

// Ours may reject more than theirs (scalars at the top level, lone low
// surrogates, numbers that underflow to zero), never less.
TEST(JsonOracle, MutationsTheyRejectWeRejectToo) {
  Generator generator(7);
  static const char kInserts[] = "{}[],:\"\\0123456789.eE+-tfnrul \t\nx\x80\xC3\xE2\xF0\x1F";
  int rejectedByBoth = 0;
  for (int i = 0; i < 4000; ++i) {
    std::string text = generator.document();
    for (std::uint64_t edits = 1 + generator.below(3); edits > 0 && !text.empty(); --edits) {
      const std::size_t at = generator.below(text.size());
      const char insert = kInserts[generator.below(sizeof kInserts - 1)];
      switch (generator.below(3)) {
        case 0: text.erase(at, 1); break;
        case 1: text.insert(at, 1, insert); break;
        default: text[at] = insert; break;
      }
    }
    rapidjson::Document theirs;
    theirs.Parse<kOracleFlags>(text.data(), text.size());
    const detail::JsonReadResult ours = detail::readJson(text);
    if (theirs.HasParseError()) {
      EXPECT_FALSE(ours.value) << "accepted what the oracle rejects: " << text;
      ++rejectedByBoth;
    } else if (ours.value) {
      EXPECT_EQ(compare(*ours.value, theirs, "$"), "") << text;
    }
  }
  EXPECT_GT(rejectedByBoth, 1000);  // the mutations do break documents
}

}  // namespace
}  // namespace tavuro
