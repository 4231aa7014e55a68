#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include <csignal>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Base64.h"
#include "platform/DateFormat.h"

namespace {

using tavuro::Utils;
using tavuro::platform::base64DecodeLenient;
using tavuro::platform::base64Encode;

TEST(Utils, DateFieldToDateStringConvertsOrReturnsTheArgument) {
  // The fuzz target's model judges many more (its corpus); these pin dates.
  // No expectation means "the argument comes back unchanged".
  const std::pair<const char*, const char*> cases[] = {
      {"/Date(1234567890000)/", "02-13-2009"},
      {"/Date(1609459199999)/", "12-31-2020"},  // 999 ms never carry over
      {"/Date(-999)/", "01-01-1970"},           // toward zero, not down
      {"-1500", "12-31-1969"},
      {"DateDate(5000)", "01-01-1970"},
      {"12/25/2020", "01-01-1970"},
      {"9223372036854775807", ""},  // beyond the calendar's range: nothing
      {"-9223372036854775808", ""},
      {"/Date(1234567890000-0500)/", nullptr},
      {"DaDatete(5)", nullptr},  // the word's removal does not run again
      {"9223372036854775808", nullptr},
  };
  for (const auto& [field, expected] : cases) {
    EXPECT_EQ(Utils::dateFieldToDateString(std::string(field)),
              expected != nullptr ? expected : field)
        << field;
  }
}

TEST(UtilsDeathTest, DateFieldToDateStringStopsOnAnAbsentArgument) {
  EXPECT_EXIT((void)Utils::dateFieldToDateString(std::nullopt), testing::KilledBySignal(SIGABRT),
              "dateFieldToDateString");
}

TEST(DateFormat, FollowsTheCalendarEdges) {
  constexpr std::int64_t kGregorianStart = -12219292800;
  constexpr std::int64_t kJulianYearOne = -62135769600;  // 0001-01-01
  const std::pair<std::int64_t, const char*> cases[] = {
      {kGregorianStart, "10-15-1582"},
      {kGregorianStart - 1, "10-04-1582"},
      {kJulianYearOne, "01-01-0001"},
      {kJulianYearOne - 1, "12-31-0001"},            // 1 BC, shown as year 1
      {kJulianYearOne - 367 * 86400, "12-31-0002"},  // 1 BC is a leap year
      {951782400, "02-29-2000"},
      {4107542400, "03-01-2100"},  // 2100 is no Gregorian leap year
      {253402300800, "01-01-10000"},
      {183882168921600, "12-20-5828963"},  // the calendar's last day...
      {183882168921601, ""},               // ...and nothing after it
      {-184303902528000, "09-20-5838270"},
      {-184303902528001, ""},
      {INT64_MAX / 1000, ""},
  };
  for (const auto& [seconds, expected] : cases) {
    EXPECT_EQ(tavuro::platform::formatDateMMddyyyyGMT(seconds), expected) << seconds;
  }
}

TEST(Base64, EncodesWithPadding) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"\xfb\xff\xbf", "+/+/"},
  };
  for (const auto& [bytes, text] : cases) EXPECT_EQ(base64Encode(bytes), text) << text;
}

TEST(Base64, DecodesLeniently) {
  const struct {
    const char* text;
    std::optional<std::string> bytes;
  } cases[] = {
      {"Zm9vYmE=", "fooba"},
      {"Zm9vYmE", std::nullopt},  // a last group of two or three needs its padding
      {"AA=", std::nullopt},
      {"AA=!=AAAA", std::string(1, '\0')},  // skipped characters may split it
      {"AAAA=A", std::nullopt},             // no data after whole groups' "="
      {"==", std::nullopt},
      {"_", std::nullopt},  // neither data nor "=": the length must divide by four
      {"____", ""},
      {"AAAAA", std::nullopt},
      {"AA==AAAA", std::string(1, '\0')},  // nothing after the first "=" counts
      {"Zh==", "f"},                       // leftover bits of the last character are ignored
      {"Z m\n9\tv!\xc3\xa9-_", "foo"},     // base64url's "-" and "_" are skipped too
  };
  for (const auto& c : cases) {
    const auto decoded = base64DecodeLenient(c.text);
    ASSERT_EQ(decoded.has_value(), c.bytes.has_value()) << c.text;
    if (decoded) {
      EXPECT_EQ(std::string(decoded->begin(), decoded->end()), *c.bytes) << c.text;
    }
  }
}

TEST(Base64, DecodesLongTextWithSkippedCharactersAnywhere) {
  // Long enough for the group-at-a-time path, with a skipped character at
  // every offset so that groups straddle it.
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes.push_back(static_cast<char>(i * 37));
  const std::string text = base64Encode(bytes);
  for (std::size_t at = 0; at <= text.size(); ++at) {
    const auto decoded = base64DecodeLenient(text.substr(0, at) + "\r\n" + text.substr(at));
    ASSERT_TRUE(decoded) << at;
    EXPECT_EQ(std::string(decoded->begin(), decoded->end()), bytes) << at;
  }
}

}  // namespace
