// Utils' JSON operations: the typed getters' strict kinds and exact numbers,
// and what convertToDictionary prints.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {
namespace {

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
