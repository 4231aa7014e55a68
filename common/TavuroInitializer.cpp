#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

ITavuroInitializer::~ITavuroInitializer() = default;
TavuroInitializer::~TavuroInitializer() = default;

void TavuroInitializer::initialize(const std::vector<std::shared_ptr<ITavuroPackage>>& packages,
                                   TavuroInitializerCallback callback) {
  // The list is taken literally: no sorting, no de-duplication. A package
  // listed twice is started twice. It is copied first: a package may change
  // or clear the caller's vector from its initialize(), and the copy keeps
  // every package of the list as passed alive and in order until the end.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is the point.
  const std::vector<std::shared_ptr<ITavuroPackage>> list = packages;
  for (const auto& package : list) {
    if (package) package->initialize();
  }
  if (callback) callback(nullptr);
}

}  // namespace tavuro
