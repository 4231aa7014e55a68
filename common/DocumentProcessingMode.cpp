#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

DocumentProcessingMode& DocumentProcessingMode::shared() noexcept {
  // Created once under the language's thread-safe static initialisation and
  // deliberately never destroyed.
  static DocumentProcessingMode* const instance = new DocumentProcessingMode();
  return *instance;
}

ProcessingMode DocumentProcessingMode::processingMode() noexcept {
  return static_cast<ProcessingMode>(
      shared().processingMode_.load(std::memory_order_relaxed));
}

void DocumentProcessingMode::setDataCaptureProcessingMode() noexcept {
  shared().processingMode_.store(rawValue(ProcessingMode::DataCapture),
                                 std::memory_order_relaxed);
}

}  // namespace tavuro
