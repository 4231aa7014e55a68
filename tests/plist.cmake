tavuro_add_test(tavuro_plist_test SOURCES plist_test.cpp)

if(TAVURO_BUILD_ORACLE_TESTS)
  # Python's plistlib writes lists of every kind for our reader and reads
  # back what our writer produces (the driver is made in dates.cmake).
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME PlistOracle.AgreesWithPythonPlistlib
    COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/python_oracle.py"
            "$<TARGET_FILE:oracle_driver>" plist)
  set_tests_properties(PlistOracle.AgreesWithPythonPlistlib PROPERTIES TIMEOUT 300)
endif()
