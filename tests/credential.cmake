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
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_executable(credential_oracle_driver credential_oracle_driver.cpp)
  target_link_libraries(credential_oracle_driver PRIVATE TavuroCommon_internal)
  target_compile_options(credential_oracle_driver PRIVATE ${TAVURO_WARNINGS})
  add_test(NAME CredentialOracle.AgreesWithPythonPlistlib
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/credential_oracle.py"
            $<TARGET_FILE:credential_oracle_driver> "${TAVURO_KELMO_DEFAULT_ENDPOINT}")
endif()
