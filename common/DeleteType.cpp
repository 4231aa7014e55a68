#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

std::optional<DeleteType> deleteTypeWithRawValue(std::int64_t rawValue) noexcept {
  if (rawValue < 0 || rawValue > 1) return std::nullopt;
  return static_cast<DeleteType>(rawValue);
}

}  // namespace tavuro
