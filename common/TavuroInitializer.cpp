#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

ITavuroInitializer::~ITavuroInitializer() = default;
TavuroInitializer::~TavuroInitializer() = default;

void TavuroInitializer::initialize(
    const std::vector<std::shared_ptr<ITavuroPackage>>& packages,
    TavuroInitializerCallback callback) {
  // The list is taken literally: no sorting, no de-duplication. A package
  // listed twice is started twice.
  for (const auto& package : packages) {
    if (package) package->initialize();
  }
  if (callback) callback(nullptr);
}

}  // namespace tavuro
