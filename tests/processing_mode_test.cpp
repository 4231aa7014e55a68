#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::DeleteType;
using tavuro::DocumentProcessingMode;
using tavuro::ProcessingMode;

TEST(ProcessingMode, RawValuesOutsideTheEnumerationGiveNothing) {
  for (std::int64_t raw : {INT64_MIN, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1},
                           std::int64_t{2}, std::int64_t{3}, INT64_MAX}) {
    const auto mode = tavuro::processingModeWithRawValue(raw);
    EXPECT_EQ(mode.has_value(), raw >= 0 && raw <= 2) << raw;
    if (mode) {
      EXPECT_EQ(tavuro::rawValue(*mode), raw);
    }

    const auto type = tavuro::deleteTypeWithRawValue(raw);
    EXPECT_EQ(type.has_value(), raw == 0 || raw == 1) << raw;
    if (type) {
      EXPECT_EQ(tavuro::rawValue(*type), raw);
    }
  }
}

// Each test below runs in its own process, so each sees a fresh mode.

TEST(DocumentProcessingMode, StartsAtRawValueTwoAndSwitchesToDataCaptureForGood) {
  EXPECT_EQ(tavuro::rawValue(DocumentProcessingMode::processingMode()), 2);
  DocumentProcessingMode::setDataCaptureProcessingMode();
  EXPECT_EQ(DocumentProcessingMode::processingMode(), ProcessingMode::DataCapture);
  DocumentProcessingMode::setDataCaptureProcessingMode();
  EXPECT_EQ(tavuro::rawValue(DocumentProcessingMode::processingMode()), 1);
}

TEST(DocumentProcessingMode, SwitchAsFirstUseTakesEffect) {
  DocumentProcessingMode::setDataCaptureProcessingMode();
  EXPECT_EQ(DocumentProcessingMode::processingMode(), ProcessingMode::DataCapture);
}

TEST(DocumentProcessingMode, FirstUseFromManyThreadsSeesOneInstance) {
  // Half the threads switch, half read; under ThreadSanitizer this also
  // checks that the creation and the accesses do not race.
  constexpr int kThreads = 8;
  std::vector<std::thread> threads;
  std::vector<ProcessingMode> seen(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([i, &seen] {
      if (i % 2 == 0) DocumentProcessingMode::setDataCaptureProcessingMode();
      seen[i] = DocumentProcessingMode::processingMode();
    });
  }
  for (auto& t : threads) t.join();
  for (int i = 0; i < kThreads; i += 2) {
    EXPECT_EQ(seen[i], ProcessingMode::DataCapture) << i;
  }
  // Had two instances been made, one of them would still read Standard.
  EXPECT_EQ(DocumentProcessingMode::processingMode(), ProcessingMode::DataCapture);
}

}  // namespace
