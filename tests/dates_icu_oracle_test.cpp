// Our date formatter against the platform's own formatter engine, ICU, over
// its whole supported range.
#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include "platform/DateFormat.h"

namespace {

using tavuro::platform::formatDateMMddyyyyGMT;

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kEarliest = -184303902528000;
constexpr std::int64_t kLatest = 183882168921600;

// One formatter reused for every instant: made the way the platform makes
// one per call ("MM-dd-yyyy", GMT), which is far too slow for a million.
class IcuFormatter {
 public:
  IcuFormatter() {
    UErrorCode status = U_ZERO_ERROR;
    format_ = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("MM-dd-yyyy"),
                                                      icu::Locale::getUS(), status);
    EXPECT_TRUE(U_SUCCESS(status)) << u_errorName(status);
    format_->adoptTimeZone(icu::TimeZone::createTimeZone("GMT"));
    // The platform's formatter is not lenient: beyond the calendar's range
    // it formats nothing.
    format_->setLenient(false);
  }

  std::string operator()(std::int64_t seconds) const {
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    format_->format(static_cast<UDate>(seconds) * 1000.0, text, nullptr, status);
    if (U_FAILURE(status)) return "";
    std::string utf8;
    return text.toUTF8String(utf8);
  }

 private:
  std::unique_ptr<icu::SimpleDateFormat> format_;
};

// Counts disagreements, showing the first few.
class Comparison {
 public:
  void check(std::int64_t seconds) {
    const std::string expected = icu_(seconds);
    const std::string actual = formatDateMMddyyyyGMT(seconds);
    if (actual == expected) return;
    if (++mismatches_ <= 10) {
      ADD_FAILURE() << seconds << " s: ICU " << expected << ", ours " << actual;
    }
  }
  int mismatches() const { return mismatches_; }

 private:
  IcuFormatter icu_;
  int mismatches_ = 0;
};

TEST(DateFormatOracle, AgreesWithIcuOverItsWholeRange) {
  Comparison comparison;
  std::mt19937_64 random(20240229);
  std::uniform_int_distribution<std::int64_t> anywhere(kEarliest, kLatest);
  // Uniform draws almost never land near today, so half the draws take a
  // random magnitude instead: every scale from seconds to millions of years.
  std::uniform_real_distribution<double> log2Magnitude(0.0, 47.4);
  for (int i = 0; i < 500000; ++i) {
    comparison.check(anywhere(random));
    const auto magnitude = static_cast<std::int64_t>(std::exp2(log2Magnitude(random)));
    comparison.check(random() % 2 ? magnitude : -magnitude);
  }
  EXPECT_EQ(comparison.mismatches(), 0);
}

TEST(DateFormatOracle, AgreesWithIcuOnEveryDayBoundaryNearTheEdges) {
  Comparison comparison;
  const std::int64_t centres[] = {
      -12219292800,  // the Gregorian start
      0,             // 1970-01-01
      -62135769600,  // 0001-01-01
      kEarliest,
      kLatest,
  };
  for (std::int64_t centre : centres) {
    for (std::int64_t day = -400; day <= 400; ++day) {
      comparison.check(centre + day * kDay);
      comparison.check(centre + day * kDay - 1);
    }
  }
  EXPECT_EQ(comparison.mismatches(), 0);
}

}  // namespace
