#include "platform/Clock.h"

#include <atomic>

#include "platform/NoDestructor.h"

namespace tavuro::platform {
namespace {

class SystemClock final : public Clock {
 public:
  Instant now() const override {
    return std::chrono::time_point_cast<Instant::duration>(std::chrono::system_clock::now());
  }
};

// Null while the system clock is in force. An atomic pointer so that a test
// may swap clocks while other threads read the time.
std::atomic<const Clock*> g_testClock{nullptr};

const Clock& systemClock() noexcept {
  static NoDestructor<SystemClock> instance;
  return *instance;
}

}  // namespace

const Clock& currentClock() noexcept {
  const Clock* replacement = g_testClock.load(std::memory_order_acquire);
  return replacement != nullptr ? *replacement : systemClock();
}

void setClockForTesting(const Clock* clock) noexcept {
  g_testClock.store(clock, std::memory_order_release);
}

}  // namespace tavuro::platform
