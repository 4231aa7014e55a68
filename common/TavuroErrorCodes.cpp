#include "TavuroCommon/TavuroCommon.h"

// The codes are `static constexpr` members in the header (implicitly inline
// in C++17), generated from interface/TavuroCommon.json, so nothing needs
// defining here. TavuroErrorInfo.cpp checks at compile time that they are
// negative and distinct.
