#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

// Out of line so that the vtable is emitted once, in this library.
ITavuroPackage::~ITavuroPackage() = default;

}  // namespace tavuro
