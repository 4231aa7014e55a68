tavuro_add_fuzzer(fuzz_json SOURCES fuzz_json.cpp CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/json)
