tavuro_add_fuzzer(fuzz_jwt SOURCES fuzz_jwt.cpp CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/jwt)
