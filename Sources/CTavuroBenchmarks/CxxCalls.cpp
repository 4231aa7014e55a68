// Times calls of the C++ interface for the Swift benchmarks, in the same
// process and run as the Swift calls they are compared with.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "TavuroBenchmarksCxx.h"
#include "TavuroCommon/TavuroCommon.h"

namespace {

// Keeps the optimiser from dropping a result.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

template <typename Body>
double bestNanosPerCall(std::size_t iterations, std::size_t rounds, Body&& body) {
  double best = 1e300;
  for (std::size_t round = 0; round < rounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < iterations; ++i) body();
    const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - start;
    best = std::min(best, spent.count() / static_cast<double>(iterations));
  }
  return best;
}

}  // namespace

double tavuro_bench_cxx_getTavuroAuthHeader(size_t iterations, size_t rounds) {
  return bestNanosPerCall(iterations, rounds, [] {
    const std::optional<std::string> header = tavuro::Credential::getTavuroAuthHeader();
    keep(header);
  });
}

double tavuro_bench_cxx_getIntValue(const char* json, const char* key, size_t iterations,
                                    size_t rounds) {
  const std::optional<tavuro::JsonDictionary> dictionary =
      tavuro::Utils::convertToDictionary(std::string(json));
  const std::string name(key);
  return bestNanosPerCall(iterations, rounds, [&] {
    const std::int64_t value = tavuro::Utils::getIntValue(dictionary, name);
    keep(value);
  });
}
