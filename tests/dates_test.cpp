#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/DateFormat.h"

namespace {

using tavuro::Utils;

TEST(Utils, DateFieldToDateStringConvertsOrReturnsTheArgument) {
  // An empty expectation means "the argument comes back unchanged".
  const std::pair<const char*, const char*> cases[] = {
      {"/Date(1234567890000)/", "02-13-2009"},
      {"/Date(1609459199999)/", "12-31-2020"},  // 999 ms never carry over
      {"/Date(-999)/", "01-01-1970"},           // toward zero, not down
      {"-1500", "12-31-1969"},
      {"+5000", "01-01-1970"},
      {"DateDate(5000)", "01-01-1970"},
      {"(/-)/86400000", "12-31-1969"},  // markers anywhere, sign still leads
      {"12/25/2020", "01-01-1970"},
      {"/Date(1234567890000-0500)/", ""},
      {"/Date()/", ""},
      {"", ""},
      {"/Date( 123)/", ""},
      {"/date(5000)/", ""},  // the word is matched case-sensitively
      {"DaDatete(5)", ""},   // the word's removal does not run again...
      {"Da/te(5)", ""},      // ...nor after the markers' removal
      {"-", ""},
      {"+-5", ""},
      {"5-", ""},
      {"9223372036854775808", ""},
      {"-9223372036854775809", ""},
  };
  for (const auto& [field, expected] : cases) {
    EXPECT_EQ(Utils::dateFieldToDateString(std::string(field)), *expected ? expected : field)
        << field;
  }
}

TEST(UtilsDeathTest, DateFieldToDateStringStopsOnAnAbsentArgument) {
  EXPECT_DEATH((void)Utils::dateFieldToDateString(std::nullopt), "dateFieldToDateString");
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

}  // namespace
