tavuro_add_fuzzer(fuzz_jwt SOURCES fuzz_jwt.cpp CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/jwt)
tavuro_add_fuzzer(fuzz_credential_save SOURCES fuzz_credential_save.cpp
  CORPUS ${CMAKE_CURRENT_SOURCE_DIR}/corpus/credential_save)
