// Compiled with the include path of platform/ (see layers.cmake).
#if __has_include("TavuroCommon/TavuroCommon.h") || __has_include("common/Utils.cpp")
#error "platform/ can include common/: its include path must hold platform/ alone"
#endif
