// The reader's rules, one table per rule: texts that must parse with the
// value they give, texts that must fail, and where a failure is reported;
// then Utils' JSON operations on what it reads.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "common/JsonAccess.h"
#include "json_describe.h"
#include "platform/Json.h"

namespace tavuro {
namespace {

using test::describe;

// Each text with the value it must read to (see describe()).
using Accepts = std::pair<std::string, std::string>;
void expectAccepted(const std::vector<Accepts>& rows) {
  for (const auto& [text, value] : rows) {
    const detail::JsonReadResult result = detail::readJson(text);
    ASSERT_TRUE(result.value) << text << " -> " << result.errorDescription;
    EXPECT_EQ(describe(*result.value), value) << text;
    EXPECT_TRUE(result.errorDescription.empty());
  }
}

void expectRejected(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const detail::JsonReadResult result = detail::readJson(text);
    EXPECT_FALSE(result.value) << text << " -> " << describe(*result.value);
    EXPECT_FALSE(result.errorDescription.empty()) << text;
  }
}

// UTF-16 or UTF-32 bytes of `units`, optionally behind a byte-order mark.
template <typename Char>
std::string encode(std::basic_string_view<Char> units, bool bigEndian, bool byteOrderMark) {
  std::string out;
  const auto put = [&](std::uint32_t unit) {
    for (std::size_t i = 0; i < sizeof(Char); ++i) {
      out += static_cast<char>(unit >> (8 * (bigEndian ? sizeof(Char) - 1 - i : i)));
    }
  };
  if (byteOrderMark) put(0xFEFF);
  for (const Char unit : units) put(static_cast<std::uint32_t>(unit));
  return out;
}

std::string repeat(const std::string& piece, int times) {
  std::string text;
  while (times-- > 0) text += piece;
  return text;
}

TEST(JsonReader, TopLevelMustBeObjectOrArray) {
  expectAccepted({{"{}", "{}"}, {"[]", "[]"}, {" \t\r\n[ 1 ]\r\n", "[i1]"}});
  expectRejected({"", "   ", "5", "\"x\"", "null", "true", "-0", "[1] [2]", "[1]]", "{}x"});
}

TEST(JsonReader, DetectsEncodings) {
  const std::u16string_view utf16 = u"{\"k\":\"\u00e9\U0001F600\"}";
  const std::u32string_view utf32 = U"{\"k\":\"\u00e9\U0001F600\"}";
  const std::string expected = "{k:\"\xC3\xA9\xF0\x9F\x98\x80\"}";
  std::vector<Accepts> rows{{"\xEF\xBB\xBF{\"k\":\"\xC3\xA9\xF0\x9F\x98\x80\"}", expected}};
  for (const bool bigEndian : {false, true}) {
    for (const bool mark : {false, true}) {
      rows.push_back({encode(utf16, bigEndian, mark), expected});
      rows.push_back({encode(utf32, bigEndian, mark), expected});
    }
  }
  expectAccepted(rows);
  expectRejected({
      encode(std::u16string_view(u"[\"\xD800\"]"), false, true),  // unpaired surrogate
      encode(std::u16string_view(u"[1]"), true, false) + "x",     // odd length
      encode(std::u32string_view(U"[\x110000]"), false, true),    // beyond Unicode
      encode(std::u32string_view(U"[\"\xDC00\"]"), true, false),  // a surrogate
      "\xEF\xBB\xBF\xEF\xBB\xBF[]",                               // a second mark is text
  });
}

// Whitespace is space, tab, CR and LF only; no trailing commas; literals
// are lower case and complete.
TEST(JsonReader, FollowsTheGrammar) {
  expectAccepted({{"{\"a\":[1,{\"b\":null}],\"c\":{}, \"d\" : [true,false]}",
                   "{a:[i1,{b:null}],c:{},d:[true,false]}"}});
  expectRejected({"[1,]",     "{\"a\":1,}", "[,1]",      "{,}",        "[1 2]",      "{\"a\" 1}",
                  "{\"a\":}", "{1:2}",      "{\"a\",1}", "[1:2]",      "[",          "{\"a\":1",
                  "[\"a\"",   "[\v1]",      "[\f1]",     "[\xC2\xA0]", "[tru]",      "[True]",
                  "[nul]",    "[nulll]",    "[NaN]",     "[Infinity]", "[-Infinity]"});
  expectRejected({std::string("[1,\0 2]", 7)});
}

TEST(JsonReader, DuplicateKeysKeepTheFirstValue) {
  // Below and above the size at which an object gets a hash index, and past
  // 16-bit member positions.
  std::string large = "{";
  std::string expected = "{";
  for (int i = 0; i < 20; ++i) {
    large += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
    expected += (i ? ",k" : "k") + std::to_string(i) + ":i" + std::to_string(i);
  }
  std::string big = "{";
  for (int i = 0; i < 70000; ++i) big += "\"" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  expectAccepted({{"{\"a\":1,\"a\":2,\"b\":3,\"a\":4}", "{a:i1,b:i3}"},
                  {"{\"a\":1,\"A\":2}", "{a:i1,A:i2}"},
                  {large + "\"k3\":99,\"k19\":98,\"\":1,\"\":2}", expected + ",:i1}"}});
  for (const auto& [text, key, value] : {std::tuple{large + "\"k3\":99}", "k3", "i3"},
                                         {big + "\"7\":1}", "7", "i7"},
                                         {big + "\"7\":1}", "69999", "i69999"}}) {
    const JsonDictionary dictionary = *detail::readJson(text).value->dictionaryValue();
    EXPECT_EQ(describe(*dictionary.find(key)), value);
    EXPECT_FALSE(dictionary.find("k20"));
  }
}

TEST(JsonReader, NestingStopsAt512) {
  const auto objects = [](int depth) {
    return repeat("{\"a\":", depth) + "1" + repeat("}", depth);
  };
  expectAccepted(
      {{repeat("[", 512) + repeat("]", 512), repeat("[", 512) + repeat("]", 512)},
       {"[" + objects(511) + "]", "[" + repeat("{a:", 511) + "i1" + repeat("}", 511) + "]"}});
  expectRejected(
      {repeat("[", 513) + repeat("]", 513), repeat("[", 100000), "[" + objects(512) + "]"});
}

TEST(JsonReader, StringEscapesAndUnicode) {
  const std::string utf8 = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
  const std::string runs = std::string(100, 'x') + "\n" + std::string(40, 'y');
  expectAccepted({
      {R"(["\"\\\/\b\f\n\r\t"])", "[\"\"\\/\b\f\n\r\t\"]"},
      {R"(["a\u0000b"])", std::string("[\"a\0b\"]", 7)},
      {R"(["\tabc\tab\ta\t12345\t123456789"])", "[\"\tabc\tab\ta\t12345\t123456789\"]"},
      {R"(["\u00e9\u20AC\ud83d\ude00"])", "[\"" + utf8 + "\"]"},
      {"[\"" + utf8 + "\xEF\xBF\xBF\"]", "[\"" + utf8 + "\xEF\xBF\xBF\"]"},
      {"[\"" + std::string(100, 'x') + "\\n" + std::string(40, 'y') + "\"]", "[\"" + runs + "\"]"},
  });
  // Control bytes, bad escapes, lone or reversed surrogates; UTF-8 that is
  // overlong, an encoded surrogate, above U+10FFFF, truncated or stray.
  std::vector<std::string> strings{
      "\x01",         "a\nb",         "\x1F",    "\t",      "\\x",      "\\U0041",
      "\\u12",        "\\u12G4",      "\\ud800", "\\udc00", "\\ud800x", "\xC0\x80",
      "\xE0\x80\x80", "\xED\xA0\x80", "\xC3",    "\x80",    "\xE2\x82", "\xFF"};
  strings.insert(strings.end(), {"\\udc00\\ud800", "\\ud800\\u0041", "\xF4\x90\x80\x80",
                                 "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80"});
  for (std::string& text : strings) text = "[\"" + text + "\"]";
  strings.push_back(std::string("[\"\0\"]", 5));
  strings.push_back("[\"abc");
  expectRejected(strings);
}

TEST(JsonReader, NumbersKeepTheirKind) {
  expectAccepted({
      {"[0,-0,-0.0,0.0,1.5,-1e2,1E-2,0e400]", "[i0,i0,d-0,d0,d1.5,d-100,d0.01,d0]"},
      {"[9223372036854775807,9223372036854775808,-9223372036854775808,-9223372036854775809]",
       "[i9223372036854775807,u9223372036854775808,i-9223372036854775808,"
       "d-9.2233720368547758e+18]"},
      {"[18446744073709551615,18446744073709551616,123456789012345678901234567890]",
       "[u18446744073709551615,d1.8446744073709552e+19,d1.2345678901234568e+29]"},
      // Correct rounding, including where a naive conversion goes wrong.
      {"[0.1,1e23,9007199254740993.0,2.2250738585072011e-308,0.30000000000000004]",
       "[d0.10000000000000001,d9.9999999999999992e+22,d9007199254740992,"
       "d2.2250738585072009e-308,d0.30000000000000004]"},
      {"[4.9e-324,3e-324,1.7976931348623157e308,0.0000000000000000000000000001e300]",
       "[d4.9406564584124654e-324,d4.9406564584124654e-324,d1.7976931348623157e+308,d1."
       "0000000000000001e+272]"},
  });
  expectRejected({"[01]", "[-01]", "[1.]", "[.1]", "[+1]", "[1e]", "[1e+]", "[-]", "[0x10]",
                  "[1.5e400]", "[1e400]", "[-1e400]", "[1e-400]", "[2e-324]",
                  "[1.7976931348623159e308]", "[1" + std::string(400, '0') + "]"});
}

TEST(JsonReader, ErrorDescriptionSaysWhatAndWhere) {
  const std::vector<std::pair<std::string, std::string>> rows{
      {"[\"\xC3\xA9\", x]", "Unexpected character 'x' at line 1, column 7."},
      {"[1,\n  2,\r\n  @]", "Unexpected character '@' at line 3, column 3."},
      {"", "Unexpected end of input at line 1, column 1."},
      {"5",
       "Unexpected character '5' at line 1, column 1: a JSON text must be an object or an "
       "array."},
      {"[\"a\\q\"]", "Invalid escape sequence '\\q' at line 1, column 4."},
      {"[1]\n]", "Unexpected character ']' after the JSON value at line 2, column 1."},
      {"[1e999]", "Number too large or too small for a double at line 1, column 2."},
      {repeat("[", 513), "Nesting deeper than 512 arrays and objects at line 1, column 513."},
      {encode(std::u16string_view(u"[\n x]"), false, false),
       "Unexpected character 'x' at line 2, column 2."},
  };
  for (const auto& [text, description] : rows) {
    EXPECT_EQ(detail::readJson(text).errorDescription, description) << text;
  }
}

TEST(JsonReader, ValuesOwnTheirTextAndStayInRange) {
  std::string text = R"({"items":[{"name":"first"},2,"three"],"n":1})";
  const JsonArray items =
      *detail::readJson(text).value->dictionaryValue()->find("items")->arrayValue();
  text.assign(text.size(), '#');
  EXPECT_EQ(describe(items[0]), "{name:\"first\"}");
  EXPECT_TRUE(items[3].isNull());
  EXPECT_EQ(JsonDictionary().keyAt(0), "");
  EXPECT_TRUE(JsonDictionary().valueAt(0).isNull());
  EXPECT_FALSE(JsonValue().arrayValue());
}

// Documents large enough to recycle arena chunks are parsed on several
// threads at once (meaningful under ThreadSanitizer). Each thread hands the
// last element of its document to the next thread and drops the rest: that
// element alone must keep its document alive while other parses reuse freed
// chunks, until the receiver has read it.
TEST(JsonReader, DocumentsCrossThreadsAndStayAliveThroughAnyValue) {
  constexpr int kThreads = 4, kElements = 20000;
  const auto v = [](const JsonValue& element) {
    return element.dictionaryValue()->find("v")->int64Value().value_or(-1);
  };
  std::mutex mutex;
  std::optional<std::pair<int, JsonValue>> handedOver;  // origin thread, its last element
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::string text = "[";
      for (int i = 0; i < kElements; ++i)
        text += "{\"v\":" + std::to_string(i * kThreads + t) + "},";
      text.back() = ']';
      for (int round = 0; round < 10; ++round) {
        std::optional<std::pair<int, JsonValue>> parcel;
        {
          const JsonArray array = *detail::readJson(text).value->arrayValue();
          for (int i = 0; i < kElements; i += 997) wrong += v(array[i]) != i * kThreads + t;
          parcel.emplace(t, array[kElements - 1]);
        }
        {
          const std::lock_guard<std::mutex> lock(mutex);
          std::swap(parcel, handedOver);
        }
        if (parcel) wrong += v(parcel->second) != (kElements - 1) * kThreads + parcel->first;
        if (round == 5) platform::releaseJsonMemory();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// Utils' typed getters: strict kinds and exact numbers.
struct Row {
  const char* key;
  const char* json;  // the stored value; nullptr: the key is missing
  std::int64_t asInt;
  double asDouble;
  const char* asString;
  bool asBool, isObject, isArray;
};

// Every getter on every kind of stored value.
const std::vector<Row> kRows{
    {"missing", nullptr, 0, 0.0, "", false, false, false},
    {"null", "null", 0, 0.0, "", false, false, false},
    {"text12", "\"12\"", 0, 0.0, "12", false, false, false},
    {"textTrue", "\"true\"", 0, 0.0, "true", false, false, false},
    {"fraction", "12.5", 0, 12.5, "", false, false, false},
    {"wholeDouble", "12.0", 12, 12.0, "", false, false, false},
    {"negativeZero", "-0.0", 0, -0.0, "", false, false, false},
    {"tooBigForInt", "1e19", 0, 1e19, "", false, false, false},
    {"int64Min", "-9223372036854775808", INT64_MIN, -9223372036854775808.0, "", false, false,
     false},
    {"int64Max", "9223372036854775807", INT64_MAX, 0.0, "", false, false, false},
    {"uint64Max", "18446744073709551615", 0, 0.0, "", false, false, false},
    {"twoTo53Plus1", "9007199254740993", 9007199254740993, 0.0, "", false, false, false},
    {"twoTo53", "9007199254740992", 9007199254740992, 9007199254740992.0, "", false, false, false},
    {"true", "true", 0, 0.0, "", true, false, false},
    {"one", "1", 1, 1.0, "", false, false, false},
    {"object", "{\"k\":1}", 0, 0.0, "", false, true, false},
    {"array", "[1,\"x\"]", 0, 0.0, "", false, false, true},
    {"Name", "\"upper\"", 0, 0.0, "upper", false, false, false},
    {"name", nullptr, 0, 0.0, "", false, false, false},  // keys are case-sensitive
};

void expectRow(const std::optional<JsonDictionary>& dictionary, const Row& row,
               const std::string& context) {
  SCOPED_TRACE(context + " key " + row.key);
  const std::string key = row.key;
  EXPECT_EQ(Utils::getIntValue(dictionary, key), row.asInt);
  const double number = Utils::getDoubleValue(dictionary, key);
  EXPECT_EQ(number, row.asDouble);
  EXPECT_EQ(std::signbit(number), std::signbit(row.asDouble));
  EXPECT_EQ(Utils::getStringValue(dictionary, key), row.asString);
  EXPECT_EQ(Utils::getBooleanValue(dictionary, key), row.asBool);
  const std::optional<JsonDictionary> object = Utils::getObjectValue(dictionary, key);
  ASSERT_EQ(object.has_value(), row.isObject);
  EXPECT_EQ(Utils::getIntValue(object, "k"), row.isObject ? 1 : 0);
  for (const auto& array :
       {Utils::getArrayValue(dictionary, key), Utils::getArrayValueFromJson(dictionary, key)}) {
    EXPECT_EQ(array.has_value(), row.isArray);
    EXPECT_EQ(array && (*array)[1].stringValue() == "x", row.isArray);  // elements unconverted
  }
}

TEST(UtilsGetters, ConvertOnlyTheirOwnKindAndExactNumbers) {
  // Each value alone in a small dictionary, then all together with padding
  // so that the lookup goes through the hash index.
  std::string all = "{";
  for (const Row& row : kRows) {
    if (row.json == nullptr) continue;
    expectRow(Utils::convertToDictionary("{\"" + std::string(row.key) + "\":" + row.json + "}"),
              row, "alone");
    all += "\"" + std::string(row.key) + "\":" + row.json + ",";
  }
  for (int i = 0; i < 40; ++i) all += "\"pad" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  all.back() = '}';
  const std::optional<JsonDictionary> dictionary = Utils::convertToDictionary(all);
  ASSERT_TRUE(dictionary);
  for (const Row& row : kRows) expectRow(dictionary, row, "together");
  expectRow(std::nullopt, kRows[0], "absent");
  expectRow(JsonDictionary(), kRows[0], "empty");
}

TEST(UtilsConvertToDictionary, PrintsOneLineOnlyForUnreadableText) {
  const struct {
    std::optional<std::string> text;
    bool gives, printsLine;  // a dictionary comes back; one line on standard output
  } cases[] = {{"{}", true, false},          {"{\"a\":[1]}", true, false}, {"[1,2]", false, false},
               {std::nullopt, false, false}, {"5", false, true},           {"", false, true},
               {"{", false, true},           {"{\"a\":1,}", false, true}};
  for (const auto& c : cases) {
    ::testing::internal::CaptureStdout();
    const std::optional<JsonDictionary> result = Utils::convertToDictionary(c.text);
    std::fflush(stdout);
    const std::string printed = ::testing::internal::GetCapturedStdout();
    SCOPED_TRACE(c.text.value_or("(absent)") + " printed " + printed);
    EXPECT_EQ(result.has_value(), c.gives);
    EXPECT_EQ(result && result->empty(), c.text == "{}");
    EXPECT_EQ(printed.find('\n'), c.printsLine ? printed.size() - 1 : std::string::npos);
    EXPECT_EQ(printed.find("line 1, column") != std::string::npos, c.printsLine);
    EXPECT_EQ(printed.empty(), !c.printsLine);
  }
}

}  // namespace
}  // namespace tavuro
