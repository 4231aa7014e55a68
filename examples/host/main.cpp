// A small host application: it goes through the order in which a host uses
// TavuroCommon, printing what each step gives.
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

}  // namespace

int main(int /*argc*/, char** argv) {
  const std::string resources = programDirectory(argv[0]);
  (void)resources;
  startPackages();
  showResults();
  showModeAndSettings();
  return 0;
}
