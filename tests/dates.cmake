# Base64, the date formatter and Utils::dateFieldToDateString.

tavuro_add_test(tavuro_dates_test SOURCES dates_test.cpp)

if(TAVURO_BUILD_ORACLE_TESTS)
  find_package(ICU REQUIRED COMPONENTS i18n uc)
  tavuro_add_test(tavuro_dates_icu_oracle_test
    SOURCES dates_icu_oracle_test.cpp
    LIBRARIES ICU::i18n ICU::uc)

  # One driver answers for base64, the property lists and the credential
  # store; plist.cmake and credential.cmake add its other two checks.
  tavuro_add_python_oracle(NAME Base64Oracle.AgreesWithPythonBase64
    DRIVER oracle_driver.cpp SCRIPT python_oracle.py ARGS base64)
endif()
