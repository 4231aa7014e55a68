// Throughput of Utils::convertToDictionary against other JSON readers on the
// corpora of make_json_corpora.py, the cost of one typed getter on a large
// dictionary, and the peak memory of a parse.
//
// Usage: bench_json [benchmark flags] [CORPORA_DIRECTORY]
// The corpora directory is the argument, else the environment variable
// TAVURO_JSON_CORPORA, else the directory the build generated them into.
#include <benchmark/benchmark.h>

#include <rapidjson/document.h>
#include <simdjson.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Json.h"

// ---------------------------------------------------------------------------
// Allocation accounting: while `gCounting` is set, every byte handed out by
// operator new and not yet returned counts as live.
// ---------------------------------------------------------------------------

namespace {
bool gCounting = false;
std::size_t gLive = 0;
std::size_t gPeak = 0;

std::size_t usableSize(void* p) {
#if defined(__GLIBC__)
  return malloc_usable_size(p);
#else
  (void)p;
  return 0;
#endif
}

void* allocate(std::size_t size) {
  void* p = std::malloc(size == 0 ? 1 : size);
  if (p == nullptr) throw std::bad_alloc();
  if (gCounting) {
    gLive += usableSize(p);
    if (gLive > gPeak) gPeak = gLive;
  }
  return p;
}

void release(void* p) {
  if (p == nullptr) return;
  if (gCounting) gLive -= std::min(gLive, usableSize(p));
  std::free(p);
}
}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void operator delete(void* p) noexcept {
  release(p);
}
void operator delete[](void* p) noexcept {
  release(p);
}
void operator delete(void* p, std::size_t) noexcept {
  release(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  release(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept {
  release(p);
}
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  release(p);
}

namespace {

struct Corpus {
  std::string name;
  std::optional<std::string> text;
};

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void BM_ConvertToDictionary(benchmark::State& state, const Corpus* corpus) {
  for (auto _ : state) {
    auto dictionary = tavuro::Utils::convertToDictionary(corpus->text);
    if (!dictionary) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(dictionary);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * corpus->text->size()));
}

void BM_RapidJson(benchmark::State& state, const Corpus* corpus) {
  for (auto _ : state) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseFullPrecisionFlag>(corpus->text->data(), corpus->text->size());
    if (document.HasParseError()) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(document);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * corpus->text->size()));
}

void BM_Simdjson(benchmark::State& state, const Corpus* corpus) {
  // The parser is made once and reused, as simdjson is meant to be used.
  simdjson::dom::parser parser;
  const simdjson::padded_string padded(*corpus->text);
  for (auto _ : state) {
    auto result = parser.parse(padded);
    if (result.error() != simdjson::SUCCESS) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(result);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * corpus->text->size()));
}

void BM_Nlohmann(benchmark::State& state, const Corpus* corpus) {
  for (auto _ : state) {
    auto document = nlohmann::json::parse(*corpus->text, nullptr, false);
    if (document.is_discarded()) state.SkipWithError("parse failed");
    benchmark::DoNotOptimize(document);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * corpus->text->size()));
}

// Live bytes at the highest point of one parse, kept until the result is
// dropped, against the size of the text.
void BM_PeakMemory(benchmark::State& state, const Corpus* corpus) {
  std::size_t peak = 0;
  for (auto _ : state) {
    // Start cold: memory the reader kept from earlier documents would not
    // be counted.
    tavuro::platform::releaseJsonMemory();
    gLive = 0;
    gPeak = 0;
    gCounting = true;
    {
      auto dictionary = tavuro::Utils::convertToDictionary(corpus->text);
      benchmark::DoNotOptimize(dictionary);
    }
    gCounting = false;
    peak = gPeak;
  }
  state.counters["peak_bytes"] = static_cast<double>(peak);
  state.counters["peak_ratio"] =
      static_cast<double>(peak) / static_cast<double>(corpus->text->size());
}

// A dictionary of 200 keys shaped like a service answer's fields.
struct GetterFixture {
  std::optional<tavuro::JsonDictionary> dictionary;
  std::vector<std::string> present;
  std::vector<std::string> missing;

  GetterFixture() {
    std::string text = "{";
    for (int i = 0; i < 200; ++i) {
      present.push_back("DocumentField_" + std::to_string(i * 7919 % 1000));
      missing.push_back("DocumentField_" + std::to_string(1000 + i));
      text += (i ? ",\"" : "\"") + present.back() + "\":" + std::to_string(i);
    }
    text += "}";
    dictionary = tavuro::Utils::convertToDictionary(text);
  }
};

void BM_GetIntValue(benchmark::State& state, bool hit) {
  static const GetterFixture fixture;
  const std::vector<std::string>& keys = hit ? fixture.present : fixture.missing;
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::Utils::getIntValue(fixture.dictionary, keys[i]));
    i = i + 1 == keys.size() ? 0 : i + 1;
  }
}

std::string corporaDirectory(int argc, char** argv) {
  if (argc > 1) return argv[1];
  if (const char* fromEnvironment = std::getenv("TAVURO_JSON_CORPORA")) return fromEnvironment;
  return TAVURO_JSON_DEFAULT_CORPORA;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const std::string directory = corporaDirectory(argc, argv);
  static std::vector<Corpus> corpora;
  for (const char* name :
       {"a_answer", "a2_answer_text", "b_small_objects", "c_coordinates", "d_small_answer"}) {
    auto text = readFile(directory + "/" + name + ".json");
    if (!text) {
      std::fprintf(stderr, "missing %s/%s.json: run bench/make_json_corpora.py %s\n",
                   directory.c_str(), name, directory.c_str());
      return 1;
    }
    corpora.push_back(Corpus{name, std::move(text)});
  }
  for (const Corpus& corpus : corpora) {
    benchmark::RegisterBenchmark(("BM_ConvertToDictionary/" + corpus.name).c_str(),
                                 BM_ConvertToDictionary, &corpus);
    benchmark::RegisterBenchmark(("BM_RapidJson/" + corpus.name).c_str(), BM_RapidJson, &corpus);
    benchmark::RegisterBenchmark(("BM_Simdjson/" + corpus.name).c_str(), BM_Simdjson, &corpus);
    benchmark::RegisterBenchmark(("BM_Nlohmann/" + corpus.name).c_str(), BM_Nlohmann, &corpus);
  }
  for (const Corpus& corpus : corpora) {
    benchmark::RegisterBenchmark(("BM_PeakMemory/" + corpus.name).c_str(), BM_PeakMemory, &corpus)
        ->Iterations(3);
  }
  benchmark::RegisterBenchmark("BM_GetIntValue/hit", BM_GetIntValue, true);
  benchmark::RegisterBenchmark("BM_GetIntValue/miss", BM_GetIntValue, false);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
