// A C++ host of the installed library. Besides calling it, it derives from
// each class a host may extend, so that the link needs the vtables and type
// information of the library's polymorphic classes.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <TavuroCommon/TavuroCommon.h>

namespace {

class CountingPackage : public tavuro::ITavuroPackage {
 public:
  void initialize() override { ++starts; }
  int starts = 0;
};

class HostEndpoints : public tavuro::Endpoints {
 public:
  std::optional<std::string> kelmoEndpoint() const override { return "https://kelmo.host/"; }
};

// The library's parseToken reads the claims through decode(): the override
// must be reached from inside the library.
class HostParser : public tavuro::TavuroJwtParser {
 public:
  tavuro::JsonDictionary decode(const std::string&) const override {
    return *tavuro::Utils::convertToDictionary(std::string(R"({"exp": 4102444800})"));
  }
};

}  // namespace

int main() {
  const auto error = tavuro::TavuroError::newInstance();
  error->setErrorCode(tavuro::TavuroErrorCodes::ERROR_InvalidJson);
  bool ok = error->errorCode() == -6 && tavuro::Utils::SDK_VERSION_CODE() == tavuro::kVersion;

  const auto package = std::make_shared<CountingPackage>();
  bool called = false;
  tavuro::TavuroInitializer().initialize(
      {package, nullptr, package},
      [&called](std::shared_ptr<tavuro::TavuroError> e) { called = e == nullptr; });
  ok = ok && called && package->starts == 2;

  const std::shared_ptr<tavuro::Endpoints> endpoints = std::make_shared<HostEndpoints>();
  endpoints->setFrmEndpoint("https://frm.host/");
  ok = ok && endpoints->frmEndpoint() == "https://frm.host/" &&
       endpoints->kelmoEndpoint() == "https://kelmo.host/" &&
       std::dynamic_pointer_cast<HostEndpoints>(endpoints) != nullptr;

  const std::unique_ptr<tavuro::TavuroJwtParser> parser = std::make_unique<HostParser>();
  const auto token = parser->parseToken("not.a-token");
  ok = ok && token && token->isValid() && token->value() == "not.a-token";

  // Range-for over both containers, also straight off a temporary.
  const auto answer =
      tavuro::Utils::convertToDictionary(std::string(R"({"a": [1, 2, 3], "b": 4})"));
  std::int64_t sum = 0;
  std::string keys;
  for (const auto& [key, value] : *answer) {
    keys += key;
    sum += value.int64Value().value_or(0);
  }
  for (const tavuro::JsonValue& value : *tavuro::Utils::getArrayValue(answer, "a")) {
    sum += *value.int64Value();
  }
  ok = ok && keys == "ab" && sum == 10 &&
       std::to_string(TAVURO_VERSION_MAJOR) + "." + std::to_string(TAVURO_VERSION_MINOR) + "." +
               std::to_string(TAVURO_VERSION_PATCH) ==
           tavuro::kVersion;

  std::printf("consumer: %s\n", ok ? "linked and working" : "WRONG RESULTS");
  return ok ? 0 : 1;
}
