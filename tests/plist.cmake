tavuro_add_test(tavuro_plist_test SOURCES plist_test.cpp)

if(TAVURO_BUILD_ORACLE_TESTS)
  # Python's plistlib writes lists of every kind for our reader and reads
  # back what our writer produces; the driver is the C++ side of that.
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_executable(tavuro_plist_oracle_driver plist_oracle_driver.cpp)
  target_link_libraries(tavuro_plist_oracle_driver PRIVATE TavuroCommon_internal)
  target_compile_options(tavuro_plist_oracle_driver PRIVATE ${TAVURO_WARNINGS})
  add_test(NAME plist.oracle
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/plist_oracle.py"
      "$<TARGET_FILE:tavuro_plist_oracle_driver>")
  set_tests_properties(plist.oracle PROPERTIES TIMEOUT 120)
endif()
