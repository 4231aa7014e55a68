// The wall clock, replaceable in tests so that expiry can be checked at an
// exact instant without sleeping.
#ifndef TAVURO_PLATFORM_CLOCK_H_
#define TAVURO_PLATFORM_CLOCK_H_

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro::platform {

class Clock {
 public:
  virtual ~Clock() = default;
  /// The current wall-clock time.
  virtual Instant now() const = 0;
};

/// The clock the library reads: the system clock unless a test replaced it.
const Clock& currentClock() noexcept;

/// Makes the library read `clock` (not owned; it must outlive its use), or
/// the system clock again when `clock` is null. For tests.
void setClockForTesting(const Clock* clock) noexcept;

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_CLOCK_H_
