# platform/ sees the standard library and itself only: this object, compiled
# with platform's include path, stops the build when the public header or
# anything of common/ can be included from there.
add_library(tavuro_platform_layer_check OBJECT platform_layer_check.cpp)
target_include_directories(tavuro_platform_layer_check PRIVATE
  $<TARGET_PROPERTY:TavuroCommon_platform,INCLUDE_DIRECTORIES>)
