# Small helpers that add the library's layers and the project's tests,
# benchmarks and fuzz targets with the same settings everywhere.

include_guard(GLOBAL)

# tavuro_add_layer(NAME DIRECTORY dir [INCLUDES dir...] [DEPENDS layer...])
# One layer of the library: an OBJECT library of every .cpp in `dir`,
# compiled as library code (warnings, hidden symbols, position-independent),
# that sees its INCLUDES and the layers it DEPENDS on, and nothing else.
function(tavuro_add_layer name)
  cmake_parse_arguments(ARG "" "DIRECTORY" "INCLUDES;DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${ARG_DIRECTORY}/*.cpp")
  add_library(${name} OBJECT ${sources})
  target_include_directories(${name} PUBLIC ${ARG_INCLUDES})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
  target_compile_options(${name} PRIVATE ${TAVURO_WARNINGS})
  target_compile_definitions(${name} PRIVATE
    TAVURO_BUILDING_LIBRARY $<$<BOOL:${BUILD_SHARED_LIBS}>:TAVURO_SHARED_LIBRARY>)
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
endfunction()

# tavuro_add_test(NAME SOURCES src... [LIBRARIES lib...])
# A GoogleTest program; every test case becomes its own CTest test and so
# runs in a fresh process (the library's process-wide state is never reset).
function(tavuro_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE
    TavuroCommon_internal GTest::gtest GTest::gtest_main ${ARG_LIBRARIES})
  target_compile_options(${name} PRIVATE ${TAVURO_WARNINGS})
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "TAVURO_SOURCE_DIR=${PROJECT_SOURCE_DIR}")
endfunction()

# tavuro_add_benchmark(NAME SOURCES src... [LIBRARIES lib...])
function(tavuro_add_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE
    TavuroCommon_internal benchmark::benchmark ${ARG_LIBRARIES})
  target_compile_options(${name} PRIVATE ${TAVURO_WARNINGS})
endfunction()

# tavuro_add_fuzzer(NAME SOURCES src... CORPUS dir)
# With TAVURO_BUILD_FUZZERS (clang) a libFuzzer target; otherwise a plain
# program that replays every file of the corpus through the same entry
# point, registered as a test so that the corpus runs in every build.
function(tavuro_add_fuzzer name)
  cmake_parse_arguments(ARG "" "CORPUS" "SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE TavuroCommon_internal)
  target_compile_options(${name} PRIVATE ${TAVURO_WARNINGS})
  if(TAVURO_BUILD_FUZZERS)
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp")
    if(TAVURO_BUILD_TESTS)
      add_test(NAME ${name}.replay
        COMMAND ${name} "${ARG_CORPUS}")
    endif()
  endif()
  set_property(GLOBAL APPEND PROPERTY TAVURO_FUZZERS ${name})
  set_property(GLOBAL APPEND PROPERTY TAVURO_FUZZ_CORPORA "${ARG_CORPUS}")
endfunction()

# tavuro_add_python_oracle(NAME test DRIVER source SCRIPT script [ARGS arg...])
# A differential test against an outside oracle in Python's standard
# library: SCRIPT gets the path of a small C++ DRIVER built from `source`,
# then ARGS. The interpreter is named by path so that a cross build's
# emulator is never put in front of it.
function(tavuro_add_python_oracle)
  cmake_parse_arguments(ARG "" "NAME;DRIVER;SCRIPT" "ARGS" ${ARGN})
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  get_filename_component(driver "${ARG_DRIVER}" NAME_WE)
  add_executable(${driver} ${ARG_DRIVER})
  target_link_libraries(${driver} PRIVATE TavuroCommon_internal)
  target_compile_options(${driver} PRIVATE ${TAVURO_WARNINGS})
  add_test(NAME ${ARG_NAME}
    COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_SCRIPT}"
            "$<TARGET_FILE:${driver}>" ${ARG_ARGS})
  set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT 300)
endfunction()

# tavuro_copy_resources(target files...)
# Copies the files beside the target's executable after each build: where
# the library looks for its resources when a host names no directory.
function(tavuro_copy_resources target)
  foreach(resource ${ARGN})
    get_filename_component(resource_name "${resource}" NAME)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy_if_different
              "${resource}" "$<TARGET_FILE_DIR:${target}>/${resource_name}")
  endforeach()
endfunction()
