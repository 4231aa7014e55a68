// Date fields and base64: ours side by side with the platform's formatter
// engine (ICU) and, when at hand, OpenSSL's base64.
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#if defined(TAVURO_BENCH_OPENSSL)
#include <openssl/evp.h>
#endif

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Base64.h"

namespace {

constexpr double kFieldMilliseconds = 1234567890000.0;

void BM_DateFieldToDateString(benchmark::State& state) {
  const std::optional<std::string> field = std::string("/Date(1234567890000)/");
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::Utils::dateFieldToDateString(field));
  }
}
BENCHMARK(BM_DateFieldToDateString);

std::unique_ptr<icu::SimpleDateFormat> makeIcuFormatter() {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("MM-dd-yyyy"), status);
  format->adoptTimeZone(icu::TimeZone::createTimeZone("GMT"));
  return format;
}

std::string formatWithIcu(const icu::SimpleDateFormat& format, double milliseconds) {
  icu::UnicodeString text;
  format.format(milliseconds, text);
  std::string utf8;
  return text.toUTF8String(utf8);
}

// What the platform pays: a new formatter for every field.
void BM_IcuFormatterPerCall(benchmark::State& state) {
  for (auto _ : state) {
    const auto format = makeIcuFormatter();
    benchmark::DoNotOptimize(formatWithIcu(*format, kFieldMilliseconds));
  }
}
BENCHMARK(BM_IcuFormatterPerCall);

void BM_IcuFormatterReused(benchmark::State& state) {
  const auto format = makeIcuFormatter();
  for (auto _ : state) {
    benchmark::DoNotOptimize(formatWithIcu(*format, kFieldMilliseconds));
  }
}
BENCHMARK(BM_IcuFormatterReused);

std::string randomBytes(std::size_t size) {
  std::mt19937 random(4648);
  std::string bytes(size, '\0');
  for (char& b : bytes) b = static_cast<char>(random());
  return bytes;
}

// A token payload as it arrives: base64url, so "-" and "_" (skipped by the
// lenient decoder unless translated first) and no padding.
std::string jwtSegment() {
  std::string text = tavuro::platform::base64Encode(randomBytes(225));
  for (char& c : text) {
    if (c == '+') c = '-';
    if (c == '/') c = '_';
  }
  return text;
}

void BM_Base64DecodeLenient_1MB(benchmark::State& state) {
  const std::string text = tavuro::platform::base64Encode(randomBytes(768 * 1024));
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::platform::base64DecodeLenient(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_Base64DecodeLenient_1MB);

void BM_Base64DecodeLenient_JwtSegment(benchmark::State& state) {
  const std::string text = jwtSegment();
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::platform::base64DecodeLenient(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_Base64DecodeLenient_JwtSegment);

void BM_Base64Encode(benchmark::State& state) {
  const std::string bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavuro::platform::base64Encode(bytes));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Base64Encode)->Arg(9)->Arg(768 * 1024);

#if defined(TAVURO_BENCH_OPENSSL)
// OpenSSL's block decoder is strict (no skipping), so it only sees clean text.
void BM_OpenSslDecodeBlock_1MB(benchmark::State& state) {
  const std::string text = tavuro::platform::base64Encode(randomBytes(768 * 1024));
  std::string bytes(text.size() / 4 * 3, '\0');
  for (auto _ : state) {
    benchmark::DoNotOptimize(EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                             reinterpret_cast<const unsigned char*>(text.data()),
                                             static_cast<int>(text.size())));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_OpenSslDecodeBlock_1MB);

void BM_OpenSslEncodeBlock(benchmark::State& state) {
  const std::string bytes = randomBytes(static_cast<std::size_t>(state.range(0)));
  std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
  for (auto _ : state) {
    benchmark::DoNotOptimize(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                             reinterpret_cast<const unsigned char*>(bytes.data()),
                                             static_cast<int>(bytes.size())));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenSslEncodeBlock)->Arg(9)->Arg(768 * 1024);
#endif

}  // namespace

BENCHMARK_MAIN();
