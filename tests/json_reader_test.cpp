// The reader's rules, one table per rule: texts that must parse with the
// value they give, texts that must fail, and where a failure is reported.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "json_test_support.h"
#include "platform/Json.h"

namespace tavuro {
namespace {

using testing::describe;

struct Accepts {
  std::string text;
  std::string value;
};

void expectAccepted(const std::vector<Accepts>& rows) {
  for (const Accepts& row : rows) {
    const platform::JsonParseResult result = platform::parseJson(row.text);
    ASSERT_TRUE(result.value) << row.text << " -> " << result.errorDescription;
    EXPECT_EQ(describe(*result.value), row.value) << row.text;
    EXPECT_TRUE(result.errorDescription.empty());
  }
}

void expectRejected(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const platform::JsonParseResult result = platform::parseJson(text);
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
      const std::size_t byte = bigEndian ? sizeof(Char) - 1 - i : i;
      out += static_cast<char>((unit >> (8 * byte)) & 0xFF);
    }
  };
  if (byteOrderMark) put(0xFEFF);
  for (const Char unit : units) put(static_cast<std::uint32_t>(unit));
  return out;
}

std::string repeat(const std::string& piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

std::string nested(int depth, const std::string& open, const std::string& close) {
  return repeat(open, depth) + repeat(close, depth);
}

TEST(JsonReader, TopLevelMustBeObjectOrArray) {
  expectAccepted({{"{}", "{}"}, {"[]", "[]"}, {" \t\r\n[ 1 ]\r\n", "[i1]"}});
  expectRejected({"", "   ", "5", "\"x\"", "null", "true", "-0", "[1] [2]", "[1]]", "{}x"});
}

TEST(JsonReader, DetectsEncodings) {
  const std::u16string_view utf16 = u"{\"k\":\"\u00e9\U0001F600\"}";
  const std::u32string_view utf32 = U"{\"k\":\"\u00e9\U0001F600\"}";
  const std::string expected = "{k:\"\\xC3\\xA9\\xF0\\x9F\\x98\\x80\"}";
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
  // Below and above the size at which an object gets a hash index.
  std::string large = "{";
  std::string expected = "{";
  for (int i = 0; i < 20; ++i) {
    large += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
    expected += (i ? ",k" : "k") + std::to_string(i) + ":i" + std::to_string(i);
  }
  large += "\"k3\":99,\"k19\":98,\"\":1,\"\":2}";
  expectAccepted({{"{\"a\":1,\"a\":2,\"b\":3,\"a\":4}", "{a:i1,b:i3}"},
                  {"{\"a\":1,\"A\":2}", "{a:i1,A:i2}"},
                  {large, expected + ",:i1}"}});
  const JsonDictionary dictionary = *platform::parseJson(large).value->dictionaryValue();
  EXPECT_EQ(dictionary.size(), 21U);
  EXPECT_EQ(describe(*dictionary.find("k3")), "i3");
  EXPECT_FALSE(dictionary.find("k20"));

  // Many distinct keys and one repeat at the end: dropping it stays linear.
  std::string many = "{";
  for (int i = 0; i < 200000; ++i) many += "\"" + std::to_string(i) + "\":0,";
  const JsonDictionary big = *platform::parseJson(many + "\"7\":1}").value->dictionaryValue();
  EXPECT_EQ(big.size(), 200000U);
  EXPECT_EQ(describe(*big.find("7")), "i0");
  EXPECT_EQ(big.keyAt(199999), "199999");
}

TEST(JsonReader, NestingStopsAt512) {
  const auto objects = [](int depth) {
    return repeat("{\"a\":", depth) + "1" + repeat("}", depth);
  };
  expectAccepted(
      {{nested(512, "[", "]"), nested(512, "[", "]")},
       {"[" + objects(511) + "]", "[" + repeat("{a:", 511) + "i1" + repeat("}", 511) + "]"}});
  expectRejected({nested(513, "[", "]"), nested(100000, "[", "]"), "[" + objects(512) + "]"});
}

TEST(JsonReader, StringEscapesAndUnicode) {
  expectAccepted({
      {R"(["\"\\\/\b\f\n\r\t"])", R"([""\/\x08\x0C\x0A\x0D\x09"])"},
      {R"(["a\u0000b"])", R"(["a\x00b"])"},
      {R"(["\u00e9\u20AC\ud83d\ude00"])", R"(["\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"])"},
      {"[\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBF\"]",
       R"(["\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBF"])"},
      {std::string("[\"") + std::string(100, 'x') + "\\n" + std::string(40, 'y') + "\"]",
       "[\"" + std::string(100, 'x') + "\\x0A" + std::string(40, 'y') + "\"]"},
  });
  expectRejected({
      "[\"\x01\"]",
      "[\"a\nb\"]",
      "[\"\x1F\"]",
      "[\"\t\"]",
      std::string("[\"\0\"]", 5),
      R"(["\x"])",
      R"(["\U0041"])",
      R"(["\u12"])",
      R"(["\u12G4"])",
      "[\"abc",
      R"(["\ud800"])",
      R"(["\udc00"])",
      R"(["\udc00\ud800"])",
      R"(["\ud800\u0041"])",
      R"(["\ud800x"])",
      "[\"\xC0\x80\"]",
      "[\"\xE0\x80\x80\"]",
      "[\"\xED\xA0\x80\"]",
      "[\"\xF4\x90\x80\x80\"]",
      "[\"\xF8\x88\x80\x80\x80\"]",
      "[\"\xC3\"]",
      "[\"\x80\"]",
      "[\"\xE2\x82\"]",
      "[\"\xFF\"]",
  });
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
      {"{\"a\":1 x}", "Unexpected character 'x' at line 1, column 8."},
      {"[\"\xC3\xA9\", x]", "Unexpected character 'x' at line 1, column 7."},
      {"[1,\n  2,\r\n  @]", "Unexpected character '@' at line 3, column 3."},
      {"", "Unexpected end of input at line 1, column 1."},
      {"{\"a\":", "Unexpected end of input at line 1, column 6."},
      {"5",
       "Unexpected character '5' at line 1, column 1: a JSON text must be an object or an "
       "array."},
      {"[\"a\\q\"]", "Invalid escape sequence '\\q' at line 1, column 4."},
      {"[1]\n]", "Unexpected character ']' after the JSON value at line 2, column 1."},
      {"[1e999]", "Number too large or too small for a double at line 1, column 2."},
      {nested(513, "[", "]"), "Nesting deeper than 512 arrays and objects at line 1, column 513."},
      {encode(std::u16string_view(u"[\n x]"), false, false),
       "Unexpected character 'x' at line 2, column 2."},
  };
  for (const auto& [text, description] : rows) {
    EXPECT_EQ(platform::parseJson(text).errorDescription, description) << text;
  }
}

TEST(JsonReader, ValuesShareTheirDocumentAndOutliveTheResult) {
  std::optional<JsonArray> items;
  std::string_view name;
  {
    std::string text = R"({"items":[{"name":"first"},2,"three"],"n":1})";
    const JsonDictionary root = *platform::parseJson(text).value->dictionaryValue();
    items = root.find("items")->arrayValue();
    name = *(*items)[0].dictionaryValue()->find("name")->stringValue();
    text.assign(text.size(), '#');  // the document holds its own copy
  }
  EXPECT_EQ(name, "first");
  ASSERT_EQ(items->size(), 3U);
  EXPECT_EQ(describe((*items)[2]), "\"three\"");
  EXPECT_TRUE((*items)[3].isNull());  // out of range
  EXPECT_EQ(JsonDictionary().keyAt(0), "");
  EXPECT_TRUE(JsonDictionary().valueAt(0).isNull());
  EXPECT_FALSE(JsonValue().arrayValue());
}

// Large documents recycle arena memory between threads; parse and drop many
// at once (meaningful under ThreadSanitizer).
TEST(JsonReader, ParsesOnManyThreadsAtOnce) {
  std::string text = "[";
  for (int i = 0; i < 20000; ++i) text += (i ? ",{\"v\":" : "{\"v\":") + std::to_string(i) + "}";
  text += "]";
  std::vector<std::thread> threads;
  std::vector<int> wrong(4, 0);
  for (std::size_t t = 0; t < wrong.size(); ++t) {
    threads.emplace_back([&text, &wrong, t] {
      for (int round = 0; round < 10; ++round) {
        const JsonArray array = *platform::parseJson(text).value->arrayValue();
        for (std::size_t i = 0; i < array.size(); i += 997) {
          wrong[t] +=
              array[i].dictionaryValue()->find("v")->int64Value() != static_cast<std::int64_t>(i);
        }
      }
      if (t == 0) platform::releaseJsonMemory();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

}  // namespace
}  // namespace tavuro
