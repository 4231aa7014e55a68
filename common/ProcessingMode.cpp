#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

std::optional<ProcessingMode> processingModeWithRawValue(std::int64_t rawValue) noexcept {
  if (rawValue < 0 || rawValue > 2) return std::nullopt;
  return static_cast<ProcessingMode>(rawValue);
}

}  // namespace tavuro
