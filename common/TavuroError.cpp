#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

TavuroError::TavuroError(std::int64_t errorCode, std::optional<std::string> errorDescription)
    : errorCode_(errorCode), errorDescription_(std::move(errorDescription)) {}

TavuroError::~TavuroError() = default;

std::shared_ptr<TavuroError> TavuroError::newInstance() {
  return std::make_shared<TavuroError>();
}

}  // namespace tavuro
