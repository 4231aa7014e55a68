# The credential store, its configuration file, the token record and the
# JWT parser.
tavuro_add_test(tavuro_credential_test SOURCES
  jwt_test.cpp
  credential_store_test.cpp
  credential_file_test.cpp)
# The tests compare with the build's Kelmo default, not a copy of it.
target_compile_definitions(tavuro_credential_test PRIVATE
  "TAVURO_KELMO_DEFAULT_ENDPOINT=\"${TAVURO_KELMO_DEFAULT_ENDPOINT}\"")

if(TAVURO_BUILD_ORACLE_TESTS)
  tavuro_add_python_oracle(NAME CredentialOracle.AgreesWithPythonPlistlib
    DRIVER credential_oracle_driver.cpp SCRIPT credential_oracle.py
    ARGS "${TAVURO_KELMO_DEFAULT_ENDPOINT}")
endif()
