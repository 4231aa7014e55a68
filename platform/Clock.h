// The wall clock.
#ifndef TAVURO_PLATFORM_CLOCK_H_
#define TAVURO_PLATFORM_CLOCK_H_

#include <chrono>

namespace tavuro::platform {

/// A point in wall-clock time: double-precision seconds since
/// 1970-01-01T00:00:00 UTC on the system clock.
using WallTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::duration<double>>;

/// The current wall-clock time. Whoever must be tested at an exact instant
/// takes the clock as a function of this shape instead of calling it.
[[nodiscard]] WallTime wallClockNow() noexcept;

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_CLOCK_H_
