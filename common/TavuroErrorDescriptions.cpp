#include "TavuroCommon/TavuroCommon.h"

// The texts are `static constexpr` arrays in the header (implicitly inline
// in C++17), generated from interface/TavuroCommon.json, so nothing needs
// defining here. The file keeps the one-file-per-type layout and is where any
// future out-of-line member would go.
