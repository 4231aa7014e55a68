# Base64, the date formatter and Utils::dateFieldToDateString.

tavuro_add_test(tavuro_dates_test SOURCES
  dates_test.cpp
  base64_test.cpp)

if(TAVURO_BUILD_ORACLE_TESTS)
  find_package(ICU REQUIRED COMPONENTS i18n uc)
  tavuro_add_test(tavuro_dates_icu_oracle_test
    SOURCES dates_icu_oracle_test.cpp
    LIBRARIES ICU::i18n ICU::uc)

  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_executable(base64_oracle_driver base64_oracle_driver.cpp)
  target_link_libraries(base64_oracle_driver PRIVATE TavuroCommon_internal)
  target_compile_options(base64_oracle_driver PRIVATE ${TAVURO_WARNINGS})
  add_test(NAME Base64Oracle.AgreesWithPythonBase64
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/base64_oracle.py"
            $<TARGET_FILE:base64_oracle_driver>)
endif()
