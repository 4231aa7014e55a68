#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::DocumentProcessingMode;
using tavuro::PixelFormat;
using tavuro::ProcessingMode;
using tavuro::Utils;

TEST(Picture, AcceptsOnlyMatchingPixelBytes) {
  const struct {
    std::uint32_t width, height;
    PixelFormat format;
    std::size_t bytes;
    bool accepted;
  } cases[] = {
      {2, 3, PixelFormat::RGB8, 18, true},
      {2, 3, PixelFormat::RGB8, 17, false},
      {2, 3, PixelFormat::BGRA8, 24, true},
      {0, 5, PixelFormat::Gray8, 0, true},
      {0xFFFFFFFF, 0xFFFFFFFF, PixelFormat::RGBA8, 4, false},  // the size wraps around
  };
  for (const auto& c : cases) {
    auto picture =
        tavuro::Picture::make(c.width, c.height, c.format, std::vector<std::uint8_t>(c.bytes));
    EXPECT_EQ(picture != nullptr, c.accepted) << c.width << "x" << c.height;
    if (picture) {
      EXPECT_EQ(picture->bytesPerRow() * picture->height(), c.bytes);
    }
  }
}

TEST(RawValues, OnlyEnumeratedValuesConvertBack) {
  const struct {
    std::int64_t raw;
    bool mode, deleteType;
  } cases[] = {{INT64_MIN, false, false}, {-1, false, false}, {0, true, true},
               {1, true, true},           {2, true, false},   {3, false, false},
               {INT64_MAX, false, false}};
  for (const auto& c : cases) {
    const auto mode = tavuro::processingModeWithRawValue(c.raw);
    const auto type = tavuro::deleteTypeWithRawValue(c.raw);
    EXPECT_EQ(mode.has_value(), c.mode) << c.raw;
    EXPECT_EQ(type.has_value(), c.deleteType) << c.raw;
    EXPECT_EQ(mode ? tavuro::rawValue(*mode) : c.raw, c.raw);
    EXPECT_EQ(type ? tavuro::rawValue(*type) : c.raw, c.raw);
  }
}

// Started from many threads at once, the mode is made once (had two been
// made, one would still read Standard); racing readers of the settings see
// a whole old or new value, never a torn one. The process is this test's
// alone, so the mode and the settings start fresh.
TEST(Utils, ModeAndSettingsSurviveRacingThreads) {
  EXPECT_EQ(Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION(), 0.9);
  EXPECT_EQ(Utils::SDK_VERSION_CODE(), "11.4.10");
  const std::string longVersion(200, '9');
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t] {
      if (t % 2 == 0) DocumentProcessingMode::setDataCaptureProcessingMode();
      EXPECT_TRUE(t % 2 || DocumentProcessingMode::processingMode() == ProcessingMode::DataCapture);
    });
  }
  threads.emplace_back([&] {
    for (int i = 0; i < 2000; ++i) {
      Utils::setSDK_VERSION_CODE(i % 2 ? longVersion : "1.0.0");
      Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(i % 2 ? 0.25 : 0.75);
    }
  });
  for (int i = 0; i < 2000; ++i) {
    const std::string v = Utils::SDK_VERSION_CODE();
    EXPECT_TRUE(v == longVersion || v == "1.0.0" || v == "11.4.10") << v;
    const double q = Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION();
    EXPECT_TRUE(q == 0.25 || q == 0.75 || q == 0.9) << q;
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(DocumentProcessingMode::processingMode(), ProcessingMode::DataCapture);
}

using Packages = std::vector<std::shared_ptr<tavuro::ITavuroPackage>>;
using Log = std::vector<std::string>;

// Logs its start; a meddler also empties or grows the host's own list then.
class Package : public tavuro::ITavuroPackage {
 public:
  Package(Log& log, std::string name, Packages* list = nullptr, bool clear = false)
      : log_(log), name_(std::move(name)), list_(list), clear_(clear) {}
  void initialize() override {
    log_.push_back(name_);
    if (list_ && clear_) list_->clear();
    for (int i = 0; list_ && !clear_ && i < 100; ++i) list_->push_back(list_->front());
  }

 private:
  Log& log_;
  std::string name_;
  Packages* list_;
  bool clear_;
};

// The order, duplicates and the callback are the C interface test's; here,
// what the initializer holds and what a package may do to the host's list.
TEST(TavuroInitializer, StartsTheListAsPassedWhateverAPackageDoesToItThenLetsGo) {
  for (const bool clear : {false, true}) {
    Log log;
    Packages list;
    list.push_back(std::make_shared<Package>(log, "meddler", &list, clear));
    list.push_back(std::make_shared<Package>(log, "b"));
    const std::weak_ptr<tavuro::ITavuroPackage> first = list.front(), last = list.back();
    tavuro::TavuroInitializer().initialize(list, [&](auto error) {
      EXPECT_EQ(error, nullptr);
      EXPECT_FALSE(last.expired());  // alive until the initializer is done with it
      log.push_back("callback");
    });
    EXPECT_EQ(log, (Log{"meddler", "b", "callback"}));
    list.clear();
    EXPECT_TRUE(first.expired() && last.expired());
  }
}

}  // namespace
