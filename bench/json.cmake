# bench_json: Utils::convertToDictionary against RapidJSON, simdjson and
# nlohmann/json on generated corpora, the typed getters, and peak memory.
# The corpora are generated into the build tree (never the source tree):
#   cmake --build <build> --target bench_json && <build>/bench/bench_json
find_package(RapidJSON REQUIRED)
find_package(simdjson REQUIRED)
find_package(nlohmann_json 3 REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(TAVURO_JSON_CORPORA_DIR "${CMAKE_CURRENT_BINARY_DIR}/corpora")
set(TAVURO_JSON_CORPORA
  a_answer.json a2_answer_text.json b_small_objects.json c_coordinates.json
  d_small_answer.json)
list(TRANSFORM TAVURO_JSON_CORPORA PREPEND "${TAVURO_JSON_CORPORA_DIR}/")
add_custom_command(
  OUTPUT ${TAVURO_JSON_CORPORA}
  COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/make_json_corpora.py"
          "${TAVURO_JSON_CORPORA_DIR}"
  DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/make_json_corpora.py"
  COMMENT "Generating the JSON benchmark corpora")
add_custom_target(bench_json_corpora DEPENDS ${TAVURO_JSON_CORPORA})

tavuro_add_benchmark(bench_json SOURCES json_bench.cpp
  LIBRARIES simdjson::simdjson nlohmann_json::nlohmann_json)
target_include_directories(bench_json PRIVATE ${RAPIDJSON_INCLUDE_DIRS})
target_compile_definitions(bench_json PRIVATE
  "TAVURO_JSON_DEFAULT_CORPORA=\"${TAVURO_JSON_CORPORA_DIR}\"")
add_dependencies(bench_json bench_json_corpora)
