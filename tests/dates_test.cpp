#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/DateFormat.h"

namespace {

using tavuro::Utils;
using tavuro::platform::formatDateMMddyyyyGMT;

TEST(Utils, DateFieldToDateStringConvertsOrReturnsTheArgument) {
  // An empty expectation means "the argument comes back unchanged".
  const struct {
    const char* field;
    const char* expected;
  } cases[] = {
      {"/Date(1234567890000)/", "02-13-2009"},
      {"/Date(1609459199999)/", "12-31-2020"},  // 999 ms never carry over
      {"0", "01-01-1970"},
      {"/Date(999)/", "01-01-1970"},
      {"/Date(-999)/", "01-01-1970"},  // toward zero, not down
      {"/Date(-1000)/", "12-31-1969"},
      {"-1500", "12-31-1969"},
      {"/Date(-86400000)/", "12-31-1969"},
      {"+5000", "01-01-1970"},
      {"DateDate(5000)", "01-01-1970"},
      {"(/-)/86400000", "12-31-1969"},  // markers anywhere, sign still leads
      {"12/25/2020", "01-01-1970"},
      {"0009223372036854775807", "12-20-5828963"},  // int64 max, pinned
      {"-9223372036854775808", "09-20-5838270"},    // int64 min, pinned
      {"/Date(1234567890000-0500)/", ""},
      {"/Date()/", ""},
      {"abc", ""},
      {"", ""},
      {"/Date( 123)/", ""},
      {"/date(5000)/", ""},  // the word is matched case-sensitively
      {"DaDatete(5)", ""},   // the removal does not run again on its result
      {"-", ""},
      {"+-5", ""},
      {"5-", ""},
      {"1.5", ""},
      {"9223372036854775808", ""},
      {"-9223372036854775809", ""},
  };
  for (const auto& c : cases) {
    const std::string expected = *c.expected ? c.expected : c.field;
    EXPECT_EQ(Utils::dateFieldToDateString(std::string(c.field)), expected) << c.field;
  }
}

TEST(UtilsDeathTest, DateFieldToDateStringStopsOnAnAbsentArgument) {
  EXPECT_DEATH(Utils::dateFieldToDateString(std::nullopt), "dateFieldToDateString");
}

TEST(DateFormat, FollowsTheCalendarEdges) {
  constexpr std::int64_t kDay = 86400;
  constexpr std::int64_t kGregorianStart = -12219292800;
  // 0001-01-01 of the Julian calendar, two days before the Gregorian one.
  constexpr std::int64_t kYearOne = -62135769600;
  const struct {
    std::int64_t seconds;
    const char* expected;
  } cases[] = {
      {kGregorianStart, "10-15-1582"},
      {kGregorianStart - 1, "10-04-1582"},
      {-62036064000, "02-29-0004"},  // Julian leap years every four
      {-62036064001, "02-28-0004"},
      {kYearOne, "01-01-0001"},
      {kYearOne - 1, "12-31-0001"},           // 1 BC, shown as year 1
      {kYearOne - 366 * kDay, "01-01-0001"},  // 1 BC is a leap year
      {kYearOne - 367 * kDay, "12-31-0002"},
      {951782400, "02-29-2000"},
      {4107542400, "03-01-2100"},  // 2100 is no Gregorian leap year
      {4107542399, "02-28-2100"},
      {253402300799, "12-31-9999"},
      {253402300800, "01-01-10000"},
      {327403382400, "01-01-12345"},
      {183882168921600, "12-20-5828963"},
      {-184303902528000, "09-20-5838270"},
      {std::numeric_limits<std::int64_t>::max(), "12-20-5828963"},
      {std::numeric_limits<std::int64_t>::min(), "09-20-5838270"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(formatDateMMddyyyyGMT(c.seconds), c.expected) << c.seconds;
  }
}

}  // namespace
