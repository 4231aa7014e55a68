// A small host application: it goes through the order in which a host uses
// TavuroCommon, printing what each step gives.
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <TavuroCommon/TavuroCommon.h>

namespace {

// The directory of this program, where the build puts the sample resources.
std::string programDirectory(const char* argv0) {
  const std::string path(argv0);
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string describe(const std::optional<std::string>& text) {
  return text ? "\"" + *text + "\"" : "(absent)";
}

// A stand-in for a capture package: it only says that it was started.
class ExamplePackage : public tavuro::ITavuroPackage {
 public:
  explicit ExamplePackage(std::string name) : name_(std::move(name)) {}
  void initialize() override { std::printf("  package %s initialized\n", name_.c_str()); }

 private:
  std::string name_;
};

void startPackages() {
  std::printf("Start-up\n");
  const std::vector<std::shared_ptr<tavuro::ITavuroPackage>> packages{
      std::make_shared<ExamplePackage>("DocumentCapture"),
      std::make_shared<ExamplePackage>("FaceCapture"),
  };
  tavuro::TavuroInitializer().initialize(
      packages, [](std::shared_ptr<tavuro::TavuroError> error) {
        std::printf("  start-up complete, error: %s\n",
                    error ? describe(error->errorDescription()).c_str() : "none");
      });
}

void showResults() {
  std::printf("Results handed back to the host\n");
  const auto failure = tavuro::TavuroError::newInstance();
  failure->setErrorCode(tavuro::TavuroErrorCodes::ERROR_Network);
  failure->setErrorDescription(tavuro::TavuroErrorDescriptions::ERROR_DESC_Network);
  std::printf("  error: code %lld, description %s\n",
              static_cast<long long>(failure->errorCode()),
              describe(failure->errorDescription()).c_str());

  // A 2 x 2 grey picture, its "encoded" bytes and two located corners.
  auto picture = tavuro::Picture::make(2, 2, tavuro::PixelFormat::Gray8, {0, 85, 170, 255});
  auto encoded = std::make_shared<tavuro::ByteBuffer>("\xFF\xD8\xFF\xD9", 4);
  auto image = tavuro::Image::newInstance(picture, encoded);
  image->setDpi(300);
  image->setAspectRatio(1.586F);
  image->setIsCorrectAspectRatio(true);
  image->setPoints({{0.0, 0.0}, {2.0, 2.0}});
  std::printf("  image: %ux%u pixels, %zu encoded bytes, %lld dpi, aspect ratio %.3f, "
              "%zu points, passport %s, error %s\n",
              image->image()->width(), image->image()->height(), image->data()->size(),
              static_cast<long long>(image->dpi()), image->aspectRatio(),
              image->points().size(), image->isPassport() ? "yes" : "no",
              image->error() ? "yes" : "none");
}

void showModeAndSettings() {
  std::printf("Processing mode and shared settings\n");
  std::printf("  processing mode: %lld\n",
              static_cast<long long>(tavuro::rawValue(
                  tavuro::DocumentProcessingMode::processingMode())));
  tavuro::DocumentProcessingMode::setDataCaptureProcessingMode();
  std::printf("  after switching to data capture: %lld\n",
              static_cast<long long>(tavuro::rawValue(
                  tavuro::DocumentProcessingMode::processingMode())));
  std::printf("  JPEG quality of sent images: %.2f\n",
              tavuro::Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION());
  std::printf("  kit version: %s\n", tavuro::Utils::SDK_VERSION_CODE().c_str());
}

// Before start-up: the first use of Credential loads TavuroConfig.plist from
// the resource directory. Only getters are called here, so the sample file
// is read and never rewritten.
void loadConfiguration(const std::string& resources) {
  tavuro::setResourceDirectory(resources);
  std::printf("Configuration from %s/TavuroConfig.plist\n", resources.c_str());
  std::printf("  user name %s, subscription %s\n", describe(tavuro::Credential::username()).c_str(),
              describe(tavuro::Credential::subscription()).c_str());
  const auto endpoints = tavuro::Credential::endpoints();
  if (!endpoints) {
    std::printf("  no configuration file was read\n");
    return;
  }
  std::printf("  FRM %s\n  document authentication %s\n  passive liveness %s\n"
              "  health insurance %s\n  Kelmo %s\n",
              describe(endpoints->frmEndpoint()).c_str(), describe(endpoints->idEndpoint()).c_str(),
              describe(endpoints->passiveLivenessEndpoint()).c_str(),
              describe(endpoints->healthInsuranceEndpoint()).c_str(),
              describe(endpoints->kelmoEndpoint()).c_str());
  std::printf("  credentials suffice for document authentication: %s\n",
              tavuro::Credential::isCredentialValid(endpoints->idEndpoint()) ? "yes" : "no");
}

std::string base64Url(const std::string& bytes) {
  static const char alphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string text;
  unsigned bits = 0;
  int count = 0;
  for (const unsigned char byte : bytes) {
    bits = (bits << 8) | byte;
    for (count += 8; count >= 6; count -= 6) text += alphabet[(bits >> (count - 6)) & 63];
  }
  if (count > 0) text += alphabet[(bits << (6 - count)) & 63];
  return text;
}

// After start-up: the header a package sends, first with the account's
// credentials, then with a session token such as a service hands out.
void useSessionToken() {
  std::printf("Authorization headers\n");
  std::printf("  basic: %s\n", describe(tavuro::Credential::getBasicAuthHeader()).c_str());
  const auto inOneHour = std::chrono::duration_cast<std::chrono::seconds>(
                             std::chrono::system_clock::now().time_since_epoch())
                             .count() + 3600;
  const std::string token = base64Url(R"({"alg":"none"})") + "." +
                            base64Url("{\"exp\":" + std::to_string(inOneHour) + "}") + "." +
                            base64Url("signature");
  std::printf("  token stored: %s\n", tavuro::Credential::setToken(token) ? "yes" : "no");
  std::printf("  bearer: %s\n", describe(tavuro::Credential::getTavuroAuthHeader()).c_str());
  std::printf("  token removed: %s\n", tavuro::Credential::removeToken() ? "yes" : "no");
}

// After start-up: a package reads a service's JSON answer with the lenient
// getters (a missing or mistyped field gives a default, never an error) and
// shows its /Date(ms)/ fields as dates.
void readServiceAnswer(const std::string& resources) {
  const std::string path = resources + "/sample_answer.json";
  std::printf("Service answer from %s\n", path.c_str());
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) {
    std::printf("  (cannot open it)\n");
    return;
  }
  std::string text;
  char buffer[4096];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, file)) > 0;) text.append(buffer, n);
  std::fclose(file);

  using tavuro::Utils;
  const std::optional<tavuro::JsonDictionary> answer = Utils::convertToDictionary(text);
  std::printf("  result %lld, instance %s\n",
              static_cast<long long>(Utils::getIntValue(answer, "Result")),
              Utils::getStringValue(answer, "InstanceId").c_str());
  const auto biographic = Utils::getObjectValue(answer, "Biographic");
  std::printf(
      "  %s, age %lld, born %s, expires %s\n",
      Utils::getStringValue(biographic, "FullName").c_str(),
      static_cast<long long>(Utils::getIntValue(biographic, "Age")),
      Utils::dateFieldToDateString(Utils::getStringValue(biographic, "BirthDate"))->c_str(),
      Utils::dateFieldToDateString(Utils::getStringValue(biographic, "ExpirationDate"))->c_str());
  const auto type = Utils::getObjectValue(Utils::getObjectValue(answer, "Classification"), "Type");
  std::printf("  document: %s issued %s\n", Utils::getStringValue(type, "ClassName").c_str(),
              Utils::getStringValue(type, "IssueYear").c_str());
  const std::optional<tavuro::JsonArray> fields = Utils::getArrayValue(answer, "Fields");
  for (std::size_t i = 0; fields && i < fields->size(); ++i) {
    const auto field = (*fields)[i].dictionaryValue();
    const std::string value = Utils::getStringValue(field, "Value");
    std::printf(
        "  field %-16s %-14s reliability %.2f%s\n", Utils::getStringValue(field, "Key").c_str(),
        Utils::dateFieldToDateString(value)->c_str(), Utils::getDoubleValue(field, "Reliability"),
        Utils::getBooleanValue(field, "IsConsistent") ? "" : " (inconsistent)");
  }
  // Lenient reads: a text is not a number, and a missing key is no error.
  std::printf("  IssueYear as a number: %lld, missing key: \"%s\"\n",
              static_cast<long long>(Utils::getIntValue(type, "IssueYear")),
              Utils::getStringValue(answer, "NoSuchKey").c_str());
}

}  // namespace

int main(int /*argc*/, char** argv) {
  const std::string resources = programDirectory(argv[0]);
  loadConfiguration(resources);
  startPackages();
  useSessionToken();
  readServiceAnswer(resources);
  showResults();
  showModeAndSettings();
  return 0;
}
