// Calendar formatting with the phone platform's formatter's results: the
// proleptic Julian calendar before 1582-10-15 and the Gregorian one from
// then on, within the formatter's supported range.
#ifndef TAVURO_PLATFORM_DATEFORMAT_H_
#define TAVURO_PLATFORM_DATEFORMAT_H_

#include <cstdint>
#include <string>

namespace tavuro::platform {

/// The range of instants the calendar shows, in whole seconds since 1970
/// (both on midnight: 09-20-5838270 BC in the Julian calendar and
/// 12-20-5828963 in the Gregorian one). The platform's formatter, which is
/// not lenient, formats nothing beyond it.
inline constexpr std::int64_t kEarliestFormattedSeconds = -184303902528000;
inline constexpr std::int64_t kLatestFormattedSeconds = 183882168921600;

/// `secondsSinceEpoch` (seconds since 1970-01-01T00:00:00 UTC) as
/// "MM-dd-yyyy" in GMT; the year is the year of era, at least four digits.
/// The empty text beyond the supported range.
[[nodiscard]] std::string formatDateMMddyyyyGMT(std::int64_t secondsSinceEpoch);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_DATEFORMAT_H_
