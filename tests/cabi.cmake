# The C interface: a shared build of the library (what hosts in other
# languages load), a C program that walks every handle through its life,
# checks of the shared library's symbol table, and the
# check that everything written from interface/TavuroCommon.json is current.

if(BUILD_SHARED_LIBS)
  set(TAVURO_SHARED_LIBRARY_TARGET TavuroCommon)
else()
  # The same objects as the static library, linked as the shared one would be.
  add_library(TavuroCommon_shared SHARED ${TAVURO_OBJECTS})
  target_include_directories(TavuroCommon_shared PUBLIC "${PROJECT_SOURCE_DIR}/common/include")
  target_link_libraries(TavuroCommon_shared PRIVATE Threads::Threads)
  set_target_properties(TavuroCommon_shared PROPERTIES
    OUTPUT_NAME TavuroCommon
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/shared")
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(TavuroCommon_shared PRIVATE
      "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/TavuroCommon.map")
    set_property(TARGET TavuroCommon_shared APPEND PROPERTY
      LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/TavuroCommon.map")
  endif()
  set(TAVURO_SHARED_LIBRARY_TARGET TavuroCommon_shared)
endif()

# Every handle and text through its ownership rule, from C. In the
# AddressSanitizer build LeakSanitizer checks that nothing leaks.
add_executable(tavuro_c_api_test c_api_test.c)
target_link_libraries(tavuro_c_api_test PRIVATE ${TAVURO_SHARED_LIBRARY_TARGET} Threads::Threads)
target_compile_options(tavuro_c_api_test PRIVATE ${TAVURO_WARNINGS})
add_test(NAME tavuro_c_api_test COMMAND tavuro_c_api_test)
set_tests_properties(tavuro_c_api_test PROPERTIES
  ENVIRONMENT "ASAN_OPTIONS=detect_leaks=1:abort_on_error=1")

# The checks below are programs of the build machine (the interpreter named by
# path, so that a cross build's emulator is not put in front of it); CMAKE_NM
# is the target's nm.
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# The generated regions must be what the table gives now (laid out by
# clang-format-14 when it is on PATH, else compared ignoring white space).
add_test(NAME tavuro_interface_generated
  COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/scripts/generate_interface.py" --check)
add_test(NAME tavuro_c_interface_exports
  COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/check_c_interface.py"
          "${PROJECT_SOURCE_DIR}/common/include/TavuroCommon/TavuroCommon.h"
          "${PROJECT_SOURCE_DIR}/common/include/TavuroCommon/TavuroCommon_c.h"
          "$<TARGET_FILE:${TAVURO_SHARED_LIBRARY_TARGET}>" "${CMAKE_NM}")
