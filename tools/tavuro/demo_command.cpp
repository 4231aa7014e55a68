// `tavuro demo`: a host's order of use, end to end, on the sample resources
// that ship with the project: the store loads the configuration, the host
// starts its packages, a package prepares a request and reads the answer, and
// results travel back as records.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "cli.h"

namespace tavuro::tool {
namespace {

const char kConfigFile[] = "TavuroConfig.plist";
const char kAnswerFile[] = "sample_answer.json";

std::string describe(const std::optional<std::string>& text) {
  return text ? "\"" + *text + "\"" : "(absent)";
}

std::string programDirectory() {
  char path[4096];
  const ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
  if (size <= 0) return ".";
  const std::string program(path, static_cast<std::size_t>(size));
  return program.substr(0, program.find_last_of('/'));
}

// The first of: --resources, the library's resource directory (beside the
// program in a build tree), the installed examples.
std::optional<std::string> findSampleResources(const Arguments& arguments) {
  std::vector<std::string> candidates;
  if (const auto given = arguments.option("--resources")) return *given;
  candidates.push_back(resourceDirectory());
  candidates.push_back(programDirectory() + "/../share/TavuroCommon/resources");
  for (const std::string& directory : candidates) {
    if (readFile(directory + "/" + kConfigFile)) return directory;
  }
  return std::nullopt;
}

// A scratch copy of the samples, so that the store's saves leave the shipped
// files alone. Removed when the demo ends.
class ScratchResources {
 public:
  explicit ScratchResources(const std::string& from) {
    char pattern[] = "/tmp/tavuro_demo_XXXXXX";
    if (mkdtemp(pattern) == nullptr) throw std::runtime_error("cannot make a scratch directory");
    directory_ = pattern;
    for (const char* name : {kConfigFile, kAnswerFile}) {
      const auto contents = readFile(from + "/" + name);
      if (!contents) continue;
      std::ofstream(directory_ + "/" + name, std::ios::binary) << *contents;
    }
  }
  ~ScratchResources() {
    for (const char* name : {kConfigFile, kAnswerFile})
      std::remove((directory_ + "/" + name).c_str());
    rmdir(directory_.c_str());
  }
  ScratchResources(const ScratchResources&) = delete;
  ScratchResources& operator=(const ScratchResources&) = delete;
  const std::string& directory() const { return directory_; }

 private:
  std::string directory_;
};

std::string base64Url(std::string_view bytes) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string out;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : bytes) {
    bits = (bits << 8) | static_cast<unsigned char>(c);
    for (count += 8; count >= 6; count -= 6) out += kAlphabet[(bits >> (count - 6)) & 0x3F];
  }
  if (count > 0) out += kAlphabet[(bits << (6 - count)) & 0x3F];
  return out;
}

// An unsigned session token that expires in an hour, as a service might hand out.
std::string sampleToken() {
  const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                       std::chrono::system_clock::now().time_since_epoch())
                       .count();
  return base64Url("{\"alg\":\"none\",\"typ\":\"JWT\"}") + "." +
         base64Url("{\"sub\":\"demo\",\"exp\":" + std::to_string(now + 3600) + "}") + ".";
}

void loadConfiguration() {
  std::printf("1. The credential store loads %s\n", kConfigFile);
  std::printf("   user name %s, subscription %s\n", describe(Credential::username()).c_str(),
              describe(Credential::subscription()).c_str());
  const auto endpoints = Credential::endpoints();
  if (!endpoints) {
    std::printf("   no endpoints: the file could not be read\n");
    return;
  }
  std::printf("   document service %s\n", describe(endpoints->idEndpoint()).c_str());
  std::printf("   chip verification %s\n", describe(endpoints->kelmoEndpoint()).c_str());
  // A setter stores the value and rewrites the file (in the scratch copy).
  Credential::setSubscription(Credential::subscription());
  std::printf(
      "   the host re-sets the subscription: the file is rewritten without the keys a\n"
      "   save never writes (unknown keys, passive liveness and chip verification)\n");
}

class SamplePackage final : public ITavuroPackage {
 public:
  explicit SamplePackage(const char* name) : name_(name) {}
  void initialize() override { std::printf("   package %s initialized\n", name_); }

 private:
  const char* name_;
};

void startPackages() {
  std::printf("2. The host starts its packages\n");
  TavuroInitializer().initialize({std::make_shared<SamplePackage>("DocumentCapture"),
                                  std::make_shared<SamplePackage>("FaceCapture")},
                                 [](const std::shared_ptr<TavuroError>& error) {
                                   std::printf("   start-up complete, %s\n",
                                               error ? "with an error" : "no error");
                                 });
}

// Prints each entry of `dictionary` through the typed getter of its kind,
// going into nested objects; date fields are shown converted as well.
void showEntries(const std::optional<JsonDictionary>& dictionary, int indent) {
  for (std::size_t i = 0; i < dictionary->size(); ++i) {
    const std::string key(dictionary->keyAt(i));
    std::string shown;
    switch (dictionary->valueAt(i).kind()) {
      case JsonValue::Kind::Number:
        shown = dictionary->valueAt(i).int64Value()
                    ? std::to_string(Utils::getIntValue(dictionary, key))
                    : formatDouble(Utils::getDoubleValue(dictionary, key));
        break;
      case JsonValue::Kind::Boolean:
        shown = Utils::getBooleanValue(dictionary, key) ? "true" : "false";
        break;
      case JsonValue::Kind::String:
        shown = Utils::getStringValue(dictionary, key);
        if (shown.rfind("/Date(", 0) == 0) shown += " -> " + *Utils::dateFieldToDateString(shown);
        break;
      case JsonValue::Kind::Array:
        shown = std::to_string(Utils::getArrayValue(dictionary, key)->size()) + " elements";
        break;
      case JsonValue::Kind::Object: break;
      case JsonValue::Kind::Null: shown = "null"; break;
    }
    std::printf("%*s%s:%s%s\n", indent, "", key.c_str(), shown.empty() ? "" : " ", shown.c_str());
    if (dictionary->valueAt(i).kind() == JsonValue::Kind::Object) {
      showEntries(Utils::getObjectValue(dictionary, key), indent + 2);
    }
  }
}

void readAnswer(const std::string& directory) {
  const auto text = readFile(directory + "/" + kAnswerFile);
  if (!text) {
    std::printf("   (no %s among the resources)\n", kAnswerFile);
    return;
  }
  const std::optional<JsonDictionary> answer = Utils::convertToDictionary(text);
  if (!answer) return;
  std::printf("   the answer (%s), read with the typed getters:\n", kAnswerFile);
  showEntries(answer, 5);
}

void sendRequest(const std::string& directory) {
  std::printf("3. A package prepares a request to the document service\n");
  const auto endpoints = Credential::endpoints();
  const std::optional<std::string> endpoint = endpoints ? endpoints->idEndpoint() : std::nullopt;
  std::printf("   endpoint %s, credentials valid: %s\n", describe(endpoint).c_str(),
              Credential::isCredentialValid(endpoint) ? "yes" : "no");
  std::printf("   Authorization: %s\n", describe(Credential::getTavuroAuthHeader()).c_str());
  readAnswer(directory);
  const bool kept = Credential::setToken(sampleToken());
  std::printf("   the service hands out a session token: %s\n", kept ? "stored" : "refused");
  std::printf("   Authorization: %.40s...\n",
              Credential::getTavuroAuthHeader().value_or("").c_str());
  Credential::removeToken();
}

void returnResults() {
  std::printf("4. Results travel back to the host\n");
  const auto picture = Picture::make(2, 2, PixelFormat::Gray8, {0, 85, 170, 255});
  const auto image =
      Image::newInstance(picture, std::make_shared<ByteBuffer>("\xFF\xD8\xFF\xD9", 4));
  image->setDpi(300);
  std::printf("   image: %ux%u pixels, %zu encoded bytes, %lld dpi\n", image->image()->width(),
              image->image()->height(), image->data()->size(),
              static_cast<long long>(image->dpi()));
  const auto failure = std::make_shared<TavuroError>(TavuroErrorCodes::ERROR_Network,
                                                     TavuroErrorDescriptions::ERROR_DESC_Network);
  std::printf("   failure: code %lld, %s\n", static_cast<long long>(failure->errorCode()),
              describe(failure->errorDescription()).c_str());
}

const char kHelp[] =
    "usage: tavuro demo [--resources DIR]\n\n"
    "Runs a host's order of use end to end on the sample resources (TavuroConfig.plist\n"
    "and sample_answer.json from DIR, else beside the program): the store loads the\n"
    "configuration, the packages start, a request is prepared and its answer read,\n"
    "and results come back as records. The samples are copied to a scratch directory\n"
    "first, so the store's saves do not change them.\n";

}  // namespace

int runDemo(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{}, {"--resources"}, 0, 0});
  if (arguments.has("--help")) return showHelp(kHelp);
  const std::optional<std::string> samples = findSampleResources(arguments);
  if (!samples) throw std::runtime_error("no sample resources found; give --resources DIR");
  const ScratchResources scratch(*samples);
  setResourceDirectory(scratch.directory());
  loadConfiguration();
  startPackages();
  sendRequest(scratch.directory());
  returnResults();
  return kOk;
}

}  // namespace tavuro::tool
