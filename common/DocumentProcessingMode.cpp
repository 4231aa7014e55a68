#include <atomic>
#include <cstdint>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {
namespace {

// The process-wide mode, made once whichever thread comes first. An atomic
// integer has nothing to destroy, so it outlives every late reader.
std::atomic<std::int64_t>& sharedProcessingMode() noexcept {
  static std::atomic<std::int64_t> mode{rawValue(ProcessingMode::Standard)};
  return mode;
}

}  // namespace

ProcessingMode DocumentProcessingMode::processingMode() noexcept {
  return static_cast<ProcessingMode>(sharedProcessingMode().load(std::memory_order_relaxed));
}

void DocumentProcessingMode::setDataCaptureProcessingMode() noexcept {
  sharedProcessingMode().store(rawValue(ProcessingMode::DataCapture), std::memory_order_relaxed);
}

}  // namespace tavuro
