// Costs on the path of every cloud request (the header value), of storing
// the token a service hands out, and of the one configuration load.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <benchmark/benchmark.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "platform/Base64.h"

namespace {

std::string base64Url(const std::string& bytes) {
  std::string text = tavuro::platform::base64Encode(bytes);
  while (!text.empty() && text.back() == '=') text.pop_back();
  for (char& c : text) c = c == '+' ? '-' : c == '/' ? '_' : c;
  return text;
}

// About 400 bytes, shaped like the session tokens services issue.
const std::string& typicalToken() {
  static const std::string token =
      base64Url(R"({"alg":"RS256","typ":"JWT","kid":"f3a9c1d2e4b5"})") + "." +
      base64Url(
          R"({"iss":"https://auth.example.com/","sub":"a1b2c3d4-e5f6-7890-abcd-ef1234567890",)"
          R"("aud":"capture","iat":1700000000,"nbf":1700000000,"exp":4102444800,)"
          R"("scope":"document face"})") +
      "." + base64Url(std::string(80, '\x5a'));
  return token;
}

// A scratch resource directory without a configuration file, so that the
// setters write nothing.
struct ScratchDirectory {
  ScratchDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavuro-bench-XXXXXX").string();
    path = ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string("/nonexistent");
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::string path;
};

const std::string& scratchDirectory() {
  static const ScratchDirectory directory;
  return directory.path;
}

void prepareStore() {
  tavuro::setResourceDirectory(scratchDirectory());
  tavuro::Credential::setUsername("user@example.com");
  tavuro::Credential::setPassword("correct horse battery staple");
}

void BM_GetBasicAuthHeader(benchmark::State& state) {
  prepareStore();
  for (auto _ : state) benchmark::DoNotOptimize(tavuro::Credential::getBasicAuthHeader());
}
BENCHMARK(BM_GetBasicAuthHeader);

void BM_GetTavuroAuthHeader(benchmark::State& state) {
  prepareStore();
  tavuro::Credential::setToken(typicalToken());
  for (auto _ : state) benchmark::DoNotOptimize(tavuro::Credential::getTavuroAuthHeader());
  tavuro::Credential::removeToken();
}
BENCHMARK(BM_GetTavuroAuthHeader);

void BM_SetToken(benchmark::State& state) {
  prepareStore();
  const std::string& token = typicalToken();
  for (auto _ : state) benchmark::DoNotOptimize(tavuro::Credential::setToken(token));
  state.SetLabel(std::to_string(token.size()) + "-byte token");
}
BENCHMARK(BM_SetToken);

void BM_ParseToken(benchmark::State& state) {
  const tavuro::TavuroJwtParser parser;
  for (auto _ : state) benchmark::DoNotOptimize(parser.parseToken(typicalToken()));
}
BENCHMARK(BM_ParseToken);

void BM_FirstLoad(benchmark::State& state) {
  const std::string path = scratchDirectory() + "/Typical.plist";
  std::ofstream(path) << R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>ferisant_endpoint</key>
	<string>https://id.example.com/api/</string>
	<key>frm_endpoint</key>
	<string>https://frm.example.com/api/</string>
	<key>kelmo_endpoint</key>
	<string>https://kelmo.example.com/api/</string>
	<key>med_endpoint</key>
	<string>https://med.example.com/api/</string>
	<key>passive_liveness_endpoint</key>
	<string>https://liveness.example.com/api/</string>
	<key>tavuro_password</key>
	<string>correct horse battery staple</string>
	<key>tavuro_subscription</key>
	<string>5f1c2d3e-4a5b-6c7d-8e9f-0a1b2c3d4e5f</string>
	<key>tavuro_username</key>
	<string>user@example.com</string>
</dict>
</plist>
)";
  for (auto _ : state) {
    const auto fields = tavuro::detail::loadCredentialFile(path);
    if (!fields.endpoints) state.SkipWithError("the configuration file did not load");
    benchmark::DoNotOptimize(fields);
  }
}
BENCHMARK(BM_FirstLoad);

}  // namespace

BENCHMARK_MAIN();
