# The JSON reader, the JSON value types and Utils' JSON operations.
tavuro_add_test(tavuro_json_test SOURCES json_reader_test.cpp)

# Differential test: generated documents and their mutations, read by ours
# and by RapidJSON (full precision).
if(TAVURO_BUILD_ORACLE_TESTS)
  find_package(RapidJSON REQUIRED)
  tavuro_add_test(tavuro_json_oracle_test SOURCES json_oracle_test.cpp)
  target_include_directories(tavuro_json_oracle_test PRIVATE ${RAPIDJSON_INCLUDE_DIRS})
endif()
