#include <cmath>
#include <limits>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::Utils;

TEST(Utils, SettingsStartAtTheKitDefaults) {
  EXPECT_EQ(Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION(), 0.9);
  EXPECT_EQ(Utils::SDK_VERSION_CODE(), "11.4.10");
}

TEST(Utils, SettingsStoreAnyValueUnchanged) {
  for (double quality : {0.5, 1.5, -1.0, std::numeric_limits<double>::infinity()}) {
    Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(quality);
    EXPECT_EQ(Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION(), quality);
  }
  Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(std::nan(""));
  EXPECT_TRUE(std::isnan(Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION()));

  for (const char* version : {"", "12.0.0", "not a version"}) {
    Utils::setSDK_VERSION_CODE(version);
    EXPECT_EQ(Utils::SDK_VERSION_CODE(), version);
  }
}

TEST(Utils, SettingsSurviveRacingReadsAndWrites) {
  // Meant to be set before work spreads over threads; a racing host must
  // still see a whole old or new value, never a torn one or a crash.
  const std::string longVersion(200, '9');
  std::thread writer([&] {
    for (int i = 0; i < 2000; ++i) {
      Utils::setSDK_VERSION_CODE(i % 2 ? longVersion : "1.0.0");
      Utils::setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(i % 2 ? 0.25 : 0.75);
    }
  });
  for (int i = 0; i < 2000; ++i) {
    const std::string v = Utils::SDK_VERSION_CODE();
    ASSERT_TRUE(v == longVersion || v == "1.0.0" || v == "11.4.10") << v;
    const double q = Utils::SENT_IMAGE_QUALITY_JPEG_COMPRESSION();
    ASSERT_TRUE(q == 0.25 || q == 0.75 || q == 0.9) << q;
  }
  writer.join();
}

}  // namespace
