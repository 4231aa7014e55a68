// Our date formatter against the platform's own formatter engine, ICU, over
// its whole supported range.
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "platform/DateFormat.h"

namespace {

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kEarliest = -184303902528000;
constexpr std::int64_t kLatest = 183882168921600;

TEST(DateFormatOracle, AgreesWithIcuOverItsWholeRange) {
  // One formatter for every instant, made as the platform makes one per call.
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat icu(icu::UnicodeString("MM-dd-yyyy"), icu::Locale::getUS(), status);
  ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);
  icu.adoptTimeZone(icu::TimeZone::createTimeZone("GMT"));
  icu.setLenient(false);  // as the platform's: nothing beyond the calendar's range

  // Every day boundary near the edges: the Gregorian start, 1970, year 1 and
  // the ends of the range...
  std::vector<std::int64_t> instants;
  for (const std::int64_t centre : {std::int64_t{-12219292800}, std::int64_t{0},
                                    std::int64_t{-62135769600}, kEarliest, kLatest}) {
    for (std::int64_t day = -400; day <= 400; ++day) {
      instants.insert(instants.end(), {centre + day * kDay, centre + day * kDay - 1});
    }
  }
  // ...uniform draws, and as many of a random magnitude, as uniform draws
  // almost never land near today: every scale from seconds to millions of years.
  std::mt19937_64 random(20240229);
  std::uniform_int_distribution<std::int64_t> anywhere(kEarliest, kLatest);
  std::uniform_real_distribution<double> log2Magnitude(0.0, 47.4);
  for (int i = 0; i < 500000; ++i) {
    instants.push_back(anywhere(random));
    const auto magnitude = static_cast<std::int64_t>(std::exp2(log2Magnitude(random)));
    instants.push_back(random() % 2 ? magnitude : -magnitude);
  }

  int mismatches = 0;
  for (const std::int64_t seconds : instants) {
    icu::UnicodeString text;
    std::string expected;
    UErrorCode status = U_ZERO_ERROR;
    icu.format(static_cast<UDate>(seconds) * 1000.0, text, nullptr, status);
    if (U_SUCCESS(status)) text.toUTF8String(expected);
    const std::string actual = tavuro::platform::formatDateMMddyyyyGMT(seconds);
    if (actual != expected && ++mismatches <= 10) {
      ADD_FAILURE() << seconds << " s: ICU " << expected << ", ours " << actual;
    }
  }
  EXPECT_EQ(mismatches, 0);
}

}  // namespace
