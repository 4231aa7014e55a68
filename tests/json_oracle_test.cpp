// Differential test against RapidJSON (full precision, UTF-8 validation):
// generated documents must read to the same values, and mutated documents
// that RapidJSON rejects must be rejected by ours too.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "platform/Json.h"

namespace tavuro {
namespace {

constexpr unsigned kOracleFlags =
    rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;

class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}

  std::string document() {
    std::string text;
    if (chance(0.5)) {
      object(text, 0);
    } else {
      array(text, 0);
    }
    return text;
  }

  std::mt19937_64& random() { return random_; }

 private:
  bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(random_) < p; }
  std::uint64_t below(std::uint64_t n) { return random_() % n; }

  void space(std::string& text) {
    static const char* const kSpaces[] = {"", "", "", " ", "\n  ", "\t", "\r\n"};
    text += kSpaces[below(7)];
  }

  void value(std::string& text, int depth) {
    const std::uint64_t pick = below(depth >= 5 ? 7 : 9);
    switch (pick) {
      case 0: text += "null"; break;
      case 1: text += chance(0.5) ? "true" : "false"; break;
      case 2: integer(text); break;
      case 3:
      case 4: floating(text); break;
      case 5:
      case 6: string(text); break;
      case 7: object(text, depth + 1); break;
      default: array(text, depth + 1); break;
    }
  }

  void array(std::string& text, int depth) {
    text += '[';
    const std::uint64_t count = below(8);
    for (std::uint64_t i = 0; i < count; ++i) {
      if (i) text += ',';
      space(text);
      value(text, depth);
      space(text);
    }
    text += ']';
  }

  void object(std::string& text, int depth) {
    text += '{';
    // Sometimes many members, so that objects get a hash index, and keys
    // from a small set, so that some repeat.
    const std::uint64_t count = chance(0.15) ? 12 + below(30) : below(8);
    for (std::uint64_t i = 0; i < count; ++i) {
      if (i) text += ',';
      space(text);
      if (chance(0.3)) {
        text += "\"k" + std::to_string(below(6)) + "\"";
      } else {
        string(text);
      }
      space(text);
      text += ':';
      space(text);
      value(text, depth);
    }
    text += '}';
  }

  void integer(std::string& text) {
    static const char* const kEdges[] = {
        "0", "9223372036854775807", "-9223372036854775808", "9223372036854775808",
        "18446744073709551615", "18446744073709551616", "-9223372036854775809",
        "4294967295", "4294967296", "-2147483648", "9007199254740993", "123456789012345678901234"};
    if (chance(0.3)) {
      text += kEdges[below(std::size(kEdges))];
    } else {
      const std::int64_t v = static_cast<std::int64_t>(random_()) >> below(64);
      text += std::to_string(v == 0 ? 1 : v);  // "-0" reads differently on purpose
    }
  }

  void floating(std::string& text) {
    char buffer[64];
    switch (below(4)) {
      case 0: {  // any finite double, printed exactly
        double d;
        do {
          const std::uint64_t bits = random_();
          std::memcpy(&d, &bits, sizeof d);
        } while (!std::isfinite(d));
        std::snprintf(buffer, sizeof buffer, "%.*g", static_cast<int>(1 + below(17)), d);
        // Fewer digits can round the largest doubles up past the range.
        if (!std::isfinite(std::strtod(buffer, nullptr))) std::snprintf(buffer, sizeof buffer, "%.17g", d);
        break;
      }
      case 1: {  // subnormals
        const double d = std::ldexp(static_cast<double>(1 + below(1ULL << 52)), -1074);
        std::snprintf(buffer, sizeof buffer, "%.17g", chance(0.5) ? d : -d);
        break;
      }
      case 2:  // short decimals with small exponents: the exact fast path
        std::snprintf(buffer, sizeof buffer, "%" PRIu64 ".%" PRIu64 "e%d", below(100000),
                      below(1000000000), static_cast<int>(below(45)) - 22);
        break;
      default:  // 17 to 19 significant digits
        std::snprintf(buffer, sizeof buffer, "-%" PRIu64 "%" PRIu64 ".%" PRIu64 "E+%d",
                      1 + below(9), below(100000000), below(1000000000),
                      static_cast<int>(below(280)));
        break;
    }
    const std::string number = buffer;
    // A whole-number double must stay a double: "1e+20" is fine, "12" not.
    text += number.find_first_of(".eE") == std::string::npos ? number + ".0" : number;
  }

  void string(std::string& text) {
    static const char* const kPieces[] = {
        "a", "Key", " ", "\\\"", "\\\\", "\\/", "\\b", "\\f", "\\n", "\\r", "\\t", "\\u0000",
        "\\u00e9", "\\u20AC", "\\ud83d\\ude00", "\\uFFFF", "\xC3\xA9", "\xE2\x82\xAC",
        "\xF0\x9F\x98\x80", "\xEF\xBF\xBD", "0123456789abcdef0123456789abcdef"};
    text += '"';
    const std::uint64_t count = below(6);
    for (std::uint64_t i = 0; i < count; ++i) text += kPieces[below(std::size(kPieces))];
    text += '"';
  }

  std::mt19937_64 random_;
};

// Empty when equal; otherwise what differs.
std::string compare(const JsonValue& ours, const rapidjson::Value& theirs, const std::string& path) {
  const std::string where = " at " + path;
  switch (ours.kind()) {
    case JsonValue::Kind::Null: return theirs.IsNull() ? "" : "null" + where;
    case JsonValue::Kind::Boolean:
      return theirs.IsBool() && theirs.GetBool() == *ours.boolValue() ? "" : "boolean" + where;
    case JsonValue::Kind::String:
      return theirs.IsString() && std::string_view(theirs.GetString(), theirs.GetStringLength()) ==
                                      *ours.stringValue()
                 ? ""
                 : "string" + where;
    case JsonValue::Kind::Number:
      switch (*ours.numberKind()) {
        case JsonValue::NumberKind::Int64:
          return theirs.IsInt64() && !theirs.IsDouble() && theirs.GetInt64() == *ours.int64Value()
                     ? ""
                     : "int64" + where;
        case JsonValue::NumberKind::UInt64:
          return theirs.IsUint64() && !theirs.IsInt64() && theirs.GetUint64() == *ours.uint64Value()
                     ? ""
                     : "uint64" + where;
        case JsonValue::NumberKind::Double: {
          if (!theirs.IsDouble()) return "double kind" + where;
          const double a = *ours.doubleValue();
          const double b = theirs.GetDouble();
          return std::memcmp(&a, &b, sizeof a) == 0 ? "" : "double bits" + where;
        }
      }
      return "number" + where;
    case JsonValue::Kind::Array: {
      if (!theirs.IsArray()) return "array" + where;
      const JsonArray array = *ours.arrayValue();
      if (array.size() != theirs.Size()) return "array size" + where;
      for (rapidjson::SizeType i = 0; i < theirs.Size(); ++i) {
        std::string difference = compare(array[i], theirs[i], path + "[" + std::to_string(i) + "]");
        if (!difference.empty()) return difference;
      }
      return "";
    }
    case JsonValue::Kind::Object: {
      if (!theirs.IsObject()) return "object" + where;
      // Theirs keeps repeated keys; ours keeps the first of each, in order.
      const JsonDictionary object = *ours.dictionaryValue();
      std::size_t index = 0;
      for (auto member = theirs.MemberBegin(); member != theirs.MemberEnd(); ++member) {
        const std::string_view key(member->name.GetString(), member->name.GetStringLength());
        if (theirs.FindMember(member->name) != member) continue;  // a later repeat
        if (index >= object.size() || object.keyAt(index) != key) return "key order" + where;
        std::string difference = compare(object.valueAt(index), member->value, path + "." + std::string(key));
        if (difference.empty() && !object.find(key)) difference = "lookup" + where;
        if (!difference.empty()) return difference;
        ++index;
      }
      return index == object.size() ? "" : "object size" + where;
    }
  }
  return "kind" + where;
}

TEST(JsonOracle, GeneratedDocumentsReadTheSame) {
  Generator generator(20240607);
  for (int i = 0; i < 4000; ++i) {
    const std::string text = generator.document();
    rapidjson::Document theirs;
    theirs.Parse<kOracleFlags>(text.data(), text.size());
    ASSERT_FALSE(theirs.HasParseError()) << "generator made bad JSON: " << text;
    const platform::JsonParseResult ours = platform::parseJson(text);
    ASSERT_TRUE(ours.value) << ours.errorDescription << "\n" << text;
    const std::string difference = compare(*ours.value, theirs, "$");
    ASSERT_EQ(difference, "") << text;
  }
}

TEST(JsonOracle, MutationsTheyRejectWeRejectToo) {
  Generator generator(7);
  static const char kInserts[] = "{}[],:\"\\0123456789.eE+-tfnrul \t\nx\x80\xC3\xE2\xF0\x1F";
  int rejectedByBoth = 0;
  for (int i = 0; i < 4000; ++i) {
    std::string text = generator.document();
    std::mt19937_64& random = generator.random();
    for (int edits = 1 + static_cast<int>(random() % 3); edits > 0 && !text.empty(); --edits) {
      const std::size_t at = random() % text.size();
      const char insert = kInserts[random() % (sizeof kInserts - 1)];
      switch (random() % 3) {
        case 0: text.erase(at, 1); break;
        case 1: text.insert(at, 1, insert); break;
        default: text[at] = insert; break;
      }
    }
    rapidjson::Document theirs;
    theirs.Parse<kOracleFlags>(text.data(), text.size());
    const platform::JsonParseResult ours = platform::parseJson(text);
    if (theirs.HasParseError()) {
      EXPECT_FALSE(ours.value) << "accepted what the oracle rejects: " << text;
      ++rejectedByBoth;
    } else if (ours.value) {
      EXPECT_EQ(compare(*ours.value, theirs, "$"), "") << text;
    }
    // Ours may reject more: scalars at the top level, lone low surrogates,
    // numbers that underflow to zero.
  }
  EXPECT_GT(rejectedByBoth, 1000);  // the mutations do break documents
}

}  // namespace
}  // namespace tavuro
