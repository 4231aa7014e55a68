tavuro_add_test(tavuro_plist_test SOURCES plist_test.cpp)

if(TAVURO_BUILD_ORACLE_TESTS)
  # Python's plistlib writes lists of every kind for our reader and reads
  # back what our writer produces; the driver is the C++ side of that.
  tavuro_add_python_oracle(NAME PlistOracle.AgreesWithPythonPlistlib
    DRIVER plist_oracle_driver.cpp SCRIPT plist_oracle.py)
endif()
