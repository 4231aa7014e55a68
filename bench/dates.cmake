find_package(ICU REQUIRED COMPONENTS i18n uc)
tavuro_add_benchmark(bench_dates SOURCES dates_bench.cpp LIBRARIES ICU::i18n ICU::uc)

# OpenSSL's base64 is an optional rival, measured when its headers are here.
find_package(OpenSSL QUIET)
if(OpenSSL_FOUND)
  target_link_libraries(bench_dates PRIVATE OpenSSL::Crypto)
  target_compile_definitions(bench_dates PRIVATE TAVURO_BENCH_OPENSSL)
endif()
