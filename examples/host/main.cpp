// A small host application: it goes through the order in which a host uses
// TavuroCommon, printing what each step gives.
//
// The same walk is the "tavuro demo" command: the tool compiles this file
// with TAVURO_EXAMPLE_HOST_NO_MAIN defined and calls
// tavuro_example::walkOrderOfUse on a scratch copy of the sample resources.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <TavuroCommon/TavuroCommon.h>

namespace tavuro_example {
namespace {

using tavuro::Credential;
using tavuro::Utils;

std::string describe(const std::optional<std::string>& text) {
  return text ? "\"" + *text + "\"" : "(absent)";
}

std::optional<std::string> readText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream contents;
  contents << file.rdbuf();
  return contents.str();
}

// 1. The first use of Credential loads TavuroConfig.plist from the resource
// directory. A setter stores its value and rewrites the file, so it is only
// called when the caller says the file is a scratch copy.
void loadConfiguration(const std::string& resources, bool mayRewrite) {
  tavuro::setResourceDirectory(resources);
  std::printf("1. The credential store loads %s/TavuroConfig.plist\n", resources.c_str());
  std::printf("   user name %s, subscription %s\n", describe(Credential::username()).c_str(),
              describe(Credential::subscription()).c_str());
  const auto endpoints = Credential::endpoints();
  if (!endpoints) {
    std::printf("   no configuration file was read\n");
    return;
  }
  std::printf(
      "   FRM %s\n   document authentication %s\n   passive liveness %s\n"
      "   health insurance %s\n   Kelmo %s\n",
      describe(endpoints->frmEndpoint()).c_str(), describe(endpoints->idEndpoint()).c_str(),
      describe(endpoints->passiveLivenessEndpoint()).c_str(),
      describe(endpoints->healthInsuranceEndpoint()).c_str(),
      describe(endpoints->kelmoEndpoint()).c_str());
  if (mayRewrite) {
    Credential::setSubscription(Credential::subscription());
    std::printf(
        "   the host sets the subscription again: the file is rewritten without the keys a\n"
        "   save never writes (unknown keys, passive liveness and Kelmo)\n");
  }
}

// A stand-in for a capture package: it only says that it was started.
class ExamplePackage : public tavuro::ITavuroPackage {
 public:
  explicit ExamplePackage(std::string name) : name_(std::move(name)) {}
  void initialize() override { std::printf("   package %s initialized\n", name_.c_str()); }

 private:
  std::string name_;
};

// 2. The host starts the packages it links; the callback comes last.
void startPackages() {
  std::printf("2. The host starts its packages\n");
  const std::vector<std::shared_ptr<tavuro::ITavuroPackage>> packages{
      std::make_shared<ExamplePackage>("DocumentCapture"),
      std::make_shared<ExamplePackage>("FaceCapture"),
  };
  tavuro::TavuroInitializer().initialize(packages, [](std::shared_ptr<tavuro::TavuroError> error) {
    std::printf("   start-up complete, error: %s\n",
                error ? describe(error->errorDescription()).c_str() : "none");
  });
}

std::string base64Url(const std::string& bytes) {
  static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
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

// An unsigned session token that expires in an hour, as a service hands out.
std::string sessionToken() {
  const auto inOneHour = std::chrono::duration_cast<std::chrono::seconds>(
                             std::chrono::system_clock::now().time_since_epoch())
                             .count() +
                         3600;
  return base64Url(R"({"alg":"none"})") + "." +
         base64Url("{\"exp\":" + std::to_string(inOneHour) + "}") + "." + base64Url("signature");
}

// 3. A package asks the store for the address, whether the credentials
// suffice and the header value (Basic while no token is stored).
void prepareRequest() {
  std::printf("3. A package prepares a request to the document authentication service\n");
  const auto endpoints = Credential::endpoints();
  const std::optional<std::string> endpoint = endpoints ? endpoints->idEndpoint() : std::nullopt;
  std::printf("   endpoint %s, credentials suffice: %s\n", describe(endpoint).c_str(),
              Credential::isCredentialValid(endpoint) ? "yes" : "no");
  std::printf("   Authorization: %s\n", describe(Credential::getTavuroAuthHeader()).c_str());
}

// ... keeps a session token that a service hands out: requests then carry it
// as Bearer until it is removed.
void keepSessionToken() {
  std::printf("   the service hands out a session token: %s\n",
              Credential::setToken(sessionToken()) ? "stored" : "refused");
  std::printf("   Authorization: %s\n", describe(Credential::getTavuroAuthHeader()).c_str());
  std::printf("   token removed: %s\n", Credential::removeToken() ? "yes" : "no");
}

// ... and reads the service's JSON answer with the lenient getters (a missing
// or mistyped field gives a default, never an error), showing its /Date(ms)/
// fields as dates.
void readServiceAnswer(const std::string& resources) {
  const std::string path = resources + "/sample_answer.json";
  const std::optional<std::string> text = readText(path);
  if (!text) {
    std::printf("   (no service answer at %s)\n", path.c_str());
    return;
  }
  std::printf("   the answer in %s:\n", path.c_str());
  const std::optional<tavuro::JsonDictionary> answer = Utils::convertToDictionary(text);
  std::printf("   result %lld, instance %s\n",
              static_cast<long long>(Utils::getIntValue(answer, "Result")),
              Utils::getStringValue(answer, "InstanceId").c_str());
  const auto biographic = Utils::getObjectValue(answer, "Biographic");
  std::printf(
      "   %s, age %lld, born %s, expires %s\n",
      Utils::getStringValue(biographic, "FullName").c_str(),
      static_cast<long long>(Utils::getIntValue(biographic, "Age")),
      Utils::dateFieldToDateString(Utils::getStringValue(biographic, "BirthDate"))->c_str(),
      Utils::dateFieldToDateString(Utils::getStringValue(biographic, "ExpirationDate"))->c_str());
  const auto type = Utils::getObjectValue(Utils::getObjectValue(answer, "Classification"), "Type");
  std::printf("   document: %s issued %s\n", Utils::getStringValue(type, "ClassName").c_str(),
              Utils::getStringValue(type, "IssueYear").c_str());
  const std::optional<tavuro::JsonArray> fields = Utils::getArrayValue(answer, "Fields");
  for (std::size_t i = 0; fields && i < fields->size(); ++i) {
    const auto field = (*fields)[i].dictionaryValue();
    const std::string value = Utils::getStringValue(field, "Value");
    std::printf(
        "   field %-16s %-14s reliability %.2f%s\n", Utils::getStringValue(field, "Key").c_str(),
        Utils::dateFieldToDateString(value)->c_str(), Utils::getDoubleValue(field, "Reliability"),
        Utils::getBooleanValue(field, "IsConsistent") ? "" : " (inconsistent)");
  }
  // Lenient reads: a text is not a number, and a missing key is no error.
  std::printf("   IssueYear as a number: %lld, missing key: \"%s\"\n",
              static_cast<long long>(Utils::getIntValue(type, "IssueYear")),
              Utils::getStringValue(answer, "NoSuchKey").c_str());
}

// 4. Results travel back to the host as records.
void returnResults() {
  std::printf("4. Results travel back to the host\n");
  const auto failure = tavuro::TavuroError::newInstance();
  failure->setErrorCode(tavuro::TavuroErrorCodes::ERROR_Network);
  failure->setErrorDescription(tavuro::TavuroErrorDescriptions::ERROR_DESC_Network);
  std::printf("   error: code %lld, description %s\n", static_cast<long long>(failure->errorCode()),
              describe(failure->errorDescription()).c_str());

  // A 2 x 2 grey picture, its "encoded" bytes and two located corners.
  auto picture = tavuro::Picture::make(2, 2, tavuro::PixelFormat::Gray8, {0, 85, 170, 255});
  auto encoded = std::make_shared<tavuro::ByteBuffer>("\xFF\xD8\xFF\xD9", 4);
  auto image = tavuro::Image::newInstance(picture, encoded);
  image->setDpi(300);
  image->setAspectRatio(1.586F);
  image->setIsCorrectAspectRatio(true);
  image->setPoints({{0.0, 0.0}, {2.0, 2.0}});
  std::printf(
      "   image: %ux%u pixels, %zu encoded bytes, %lld dpi, aspect ratio %.3f, "
      "%zu points, passport %s, error %s\n",
      image->image()->width(), image->image()->height(), image->data()->size(),
      static_cast<long long>(image->dpi()), image->aspectRatio(), image->points().size(),
      image->isPassport() ? "yes" : "no", image->error() ? "yes" : "none");
}

void showModeAndSettings() {
  std::printf("Processing mode and shared settings\n");
  std::printf(
      "   processing mode: %lld\n",
      static_cast<long long>(tavuro::rawValue(tavuro::DocumentProcessingMode::processingMode())));
  tavuro::DocumentProcessingMode::setDataCaptureProcessingMode();
  std::printf(
      "   after switching to data capture: %lld\n",
      static_cast<long long>(tavuro::rawValue(tavuro::DocumentProcessingMode::processingMode())));
  std::printf("   JPEG quality of sent images: %.2f\n",
              Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION());
  std::printf("   kit version: %s\n", Utils::SDK_VERSION_CODE().c_str());
}

}  // namespace

/// Runs a host's order of use on the TavuroConfig.plist and
/// sample_answer.json in `resources`; the file is rewritten by a setter only
/// when `mayRewriteConfiguration` is true. Call it once per process, before
/// anything else uses the credential store.
int walkOrderOfUse(const std::string& resources, bool mayRewriteConfiguration) {
  loadConfiguration(resources, mayRewriteConfiguration);
  startPackages();
  prepareRequest();
  readServiceAnswer(resources);
  keepSessionToken();
  returnResults();
  showModeAndSettings();
  return 0;
}

}  // namespace tavuro_example

#ifndef TAVURO_EXAMPLE_HOST_NO_MAIN
// The build copies the sample resources beside this program. Only getters
// touch the configuration here, so that copy is never rewritten.
int main(int /*argc*/, char** argv) {
  const std::string program(argv[0]);
  const auto slash = program.find_last_of('/');
  return tavuro_example::walkOrderOfUse(slash == std::string::npos ? "." : program.substr(0, slash),
                                        false);
}
#endif
