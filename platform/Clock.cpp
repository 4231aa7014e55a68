#include "platform/Clock.h"

namespace tavuro::platform {

WallTime wallClockNow() noexcept {
  return std::chrono::time_point_cast<WallTime::duration>(std::chrono::system_clock::now());
}

}  // namespace tavuro::platform
