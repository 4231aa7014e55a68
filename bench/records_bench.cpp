// Costs of the small records that every capture result goes through.
#include <benchmark/benchmark.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

void BM_TavuroErrorFromTables(benchmark::State& state) {
  for (auto _ : state) {
    auto error =
        std::make_shared<tavuro::TavuroError>(tavuro::TavuroErrorCodes::ERROR_Network,
                                              tavuro::TavuroErrorDescriptions::ERROR_DESC_Network);
    benchmark::DoNotOptimize(error);
  }
}
BENCHMARK(BM_TavuroErrorFromTables);

void BM_ImageNewInstance(benchmark::State& state) {
  auto picture = std::make_shared<const tavuro::Picture>();
  for (auto _ : state) {
    auto image = tavuro::Image::newInstance(picture, nullptr);
    benchmark::DoNotOptimize(image);
  }
}
BENCHMARK(BM_ImageNewInstance);

void BM_ProcessingModeRead(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::DocumentProcessingMode::processingMode());
  }
}
BENCHMARK(BM_ProcessingModeRead);

}  // namespace

BENCHMARK_MAIN();
