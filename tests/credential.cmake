# The credential store, its configuration file, the token record and the
# JWT parser.
tavuro_add_test(tavuro_credential_test SOURCES
  jwt_test.cpp
  credential_store_test.cpp)
# The tests compare with the build's Kelmo default, not a copy of it.
target_compile_definitions(tavuro_credential_test PRIVATE
  "TAVURO_KELMO_DEFAULT_ENDPOINT=\"${TAVURO_KELMO_DEFAULT_ENDPOINT}\"")

if(TAVURO_BUILD_ORACLE_TESTS)
  # The driver is made in dates.cmake.
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME CredentialOracle.AgreesWithPythonPlistlib
    COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/python_oracle.py"
            "$<TARGET_FILE:oracle_driver>" credential "${TAVURO_KELMO_DEFAULT_ENDPOINT}")
  set_tests_properties(CredentialOracle.AgreesWithPythonPlistlib PROPERTIES TIMEOUT 300)
endif()
