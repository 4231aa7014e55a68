#include <mutex>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/NoDestructor.h"

namespace tavuro {
namespace {

struct SharedSettings {
  std::atomic<double> jpegQuality{0.9};
  std::mutex versionMutex;
  std::string versionCode{kVersion};
};

SharedSettings& settings() {
  static platform::NoDestructor<SharedSettings> instance;
  return *instance;
}

}  // namespace

// ---------------------------------------------------------------------------
// Shared settings
// ---------------------------------------------------------------------------

double Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION() noexcept {
  return settings().jpegQuality.load(std::memory_order_relaxed);
}

void Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(double quality) noexcept {
  settings().jpegQuality.store(quality, std::memory_order_relaxed);
}

std::string Utils::SDK_VERSION_CODE() {
  SharedSettings& s = settings();
  std::lock_guard<std::mutex> lock(s.versionMutex);
  return s.versionCode;
}

void Utils::setSDK_VERSION_CODE(std::string versionCode) {
  SharedSettings& s = settings();
  std::lock_guard<std::mutex> lock(s.versionMutex);
  s.versionCode.swap(versionCode);
  // The old text is freed outside the lock when `versionCode` goes.
}

// ---------------------------------------------------------------------------
// JSON access
// ---------------------------------------------------------------------------

// ---------------------------------------------------------------------------
// Date fields
// ---------------------------------------------------------------------------

}  // namespace tavuro
