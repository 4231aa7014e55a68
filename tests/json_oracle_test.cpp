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

#include "common/JsonAccess.h"
#include "json_describe.h"

namespace tavuro {
namespace {

using test::describe;
constexpr unsigned kOracleFlags =
    rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;

// Random documents: nesting, repeated keys, escapes and Unicode, integers at
// the 64-bit edges, doubles of every magnitude and digit count.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}
  std::uint64_t below(std::uint64_t n) { return random_() % n; }
  const char* pick(std::initializer_list<const char*> options) {
    return options.begin()[below(options.size())];
  }
  std::string space() { return pick({"", "", "", " ", "\n  ", "\t\r\n"}); }

  std::string container(int depth = 0) {
    const bool object = below(2) == 0;
    // Sometimes more members than the size from which objects are indexed.
    const std::uint64_t count = below(7) == 0 ? 16 + below(30) : below(8);
    std::string text(1, object ? '{' : '[');
    for (std::uint64_t i = 0; i < count; ++i) {  // one draw after the other
      text += i ? "," : "";
      text += space();
      if (object) {  // a third of the keys repeat
        text += below(3) == 0 ? "\"k" + std::to_string(below(6)) + "\"" : string();
        text += space() + ":";
      }
      text += value(depth);
      text += space();
    }
    return text + (object ? '}' : ']');
  }

 private:
  std::string value(int depth) {
    switch (below(depth >= 5 ? 6 : 8)) {
      case 0: return pick({"null", "true", "false"});
      case 1: {
        const auto random = static_cast<std::int64_t>(random_()) >> below(64);
        // "-0" reads as an integer here and as a double there, on purpose.
        if (below(3) != 0) return std::to_string(random ? random : 1);
        return pick({"0", "9223372036854775807", "-9223372036854775808", "9223372036854775808",
                     "18446744073709551615", "18446744073709551616", "-9223372036854775809",
                     "9007199254740993", "123456789012345678901234"});
      }
      case 2:
      case 3: return floating();
      case 4:
      case 5: return string();
      default: return container(depth + 1);
    }
  }

  std::string floating() {
    char buffer[64];
    double d = 0;
    const std::uint64_t bits = random_();
    std::memcpy(&d, &bits, sizeof d);
    switch (below(3)) {
      case 0:  // any finite double with 1 to 17 digits, or a subnormal
        if (!std::isfinite(d)) d = std::ldexp(static_cast<double>(bits >> 12), -1074);
        std::snprintf(buffer, sizeof buffer, "%.*g", static_cast<int>(1 + below(17)), d);
        // Fewer digits can round the largest doubles up past the range.
        if (std::isinf(std::strtod(buffer, nullptr))) {
          std::snprintf(buffer, sizeof buffer, "%.17g", d);
        }
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
    return number.find_first_of(".eE") == std::string::npos ? number + ".0" : number;
  }

  std::string string() {
    std::string text = "\"";
    for (std::uint64_t i = below(6); i > 0; --i) {
      text += pick({"a", "Key", " ", "\\\"", "\\\\", "\\/", "\\b\\f\\n\\r\\t", "\\u0000", "\\u00e9",
                    "\\u20AC", "\\ud83d\\ude00", "\\uFFFF", "\xC3\xA9", "\xE2\x82\xAC",
                    "\xF0\x9F\x98\x80", "0123456789abcdef0123456789abcdef"});
    }
    return text + "\"";
  }

  std::mt19937_64 random_;
};

// Theirs in the same form as ours; an object keeps the first of repeated keys.
std::string describe(const rapidjson::Value& value) {
  std::string out;
  if (value.IsNull()) return "null";
  if (value.IsBool()) return value.GetBool() ? "true" : "false";
  if (value.IsInt64()) return "i" + std::to_string(value.GetInt64());
  if (value.IsUint64()) return "u" + std::to_string(value.GetUint64());
  if (value.IsDouble()) return test::describeDouble(value.GetDouble());
  if (value.IsString())
    return "\"" + std::string(value.GetString(), value.GetStringLength()) + "\"";
  if (value.IsArray()) {
    for (const auto& element : value.GetArray())
      out += (out.empty() ? "" : ",") + describe(element);
    return "[" + out + "]";
  }
  for (auto member = value.MemberBegin(); member != value.MemberEnd(); ++member) {
    if (value.FindMember(member->name) != member) continue;  // a later repeat
    out += (out.empty() ? "" : ",") +
           std::string(member->name.GetString(), member->name.GetStringLength()) + ":" +
           describe(member->value);
  }
  return "{" + out + "}";
}

TEST(JsonOracle, GeneratedDocumentsReadTheSame) {
  Generator generator(20240607);
  for (int i = 0; i < 4000; ++i) {
    const std::string text = generator.container();
    rapidjson::Document theirs;
    theirs.Parse<kOracleFlags>(text.data(), text.size());
    ASSERT_FALSE(theirs.HasParseError()) << "generator made bad JSON: " << text;
    const detail::JsonReadResult ours = detail::readJson(text);
    ASSERT_TRUE(ours.value) << ours.errorDescription << "\n" << text;
    ASSERT_EQ(describe(*ours.value), describe(theirs)) << text;
  }
}

// Ours may reject more than theirs (scalars at the top level, lone low
// surrogates, numbers that underflow to zero), never less.
TEST(JsonOracle, MutationsTheyRejectWeRejectToo) {
  Generator generator(7);
  static const char kInserts[] = "{}[],:\"\\0123456789.eE+-tfnrul \t\nx\x80\xC3\xE2\xF0\x1F";
  int rejectedByBoth = 0;
  for (int i = 0; i < 4000; ++i) {
    std::string text = generator.container();
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
      EXPECT_EQ(describe(*ours.value), describe(theirs)) << text;
    }
  }
  EXPECT_GT(rejectedByBoth, 1000);  // the mutations do break documents
}

}  // namespace
}  // namespace tavuro
