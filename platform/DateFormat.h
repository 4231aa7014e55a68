// Calendar formatting with the phone platform's formatter's results: the
// proleptic Julian calendar before 1582-10-15 and the Gregorian one from
// then on, within the formatter's supported range.
#ifndef TAVURO_PLATFORM_DATEFORMAT_H_
#define TAVURO_PLATFORM_DATEFORMAT_H_

#include <cstdint>
#include <string>

namespace tavuro::platform {

/// `secondsSinceEpoch` (seconds since 1970-01-01T00:00:00 UTC) as
/// "MM-dd-yyyy" in GMT; the year is the year of era, at least four digits.
/// The empty text beyond the supported range (before 09-20-5838270 BC and
/// after 12-20-5828963), as the platform's formatter gives there.
[[nodiscard]] std::string formatDateMMddyyyyGMT(std::int64_t secondsSinceEpoch);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_DATEFORMAT_H_
