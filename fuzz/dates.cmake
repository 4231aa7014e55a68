tavuro_add_fuzzer(fuzz_base64 SOURCES fuzz_base64.cpp
  CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/base64)
tavuro_add_fuzzer(fuzz_date SOURCES fuzz_date.cpp
  CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/date)
