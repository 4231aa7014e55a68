#include <array>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {
namespace {

using C = TavuroErrorCodes;

// Host applications compare against these numbers, so they must stay
// negative and distinct; the compiler checks it here.
constexpr std::array<std::int64_t, 23> kAllCodes = {
    C::ERROR_InvalidCredentials,         C::ERROR_InitializationNotFinished,
    C::ERROR_Network,                    C::ERROR_InvalidJson,
    C::ERROR_CouldNotCrop,               C::ERROR_CouldNotCreateConnectInstance,
    C::ERROR_CouldNotUploadConnectImage, C::ERROR_CouldNotUploadConnectBarcode,
    C::ERROR_CouldNotGetConnectData,     C::ERROR_CouldNotClassifyDocument,
    C::ERROR_LowResolutionImage,         C::ERROR_BlurryImage,
    C::ERROR_ImageWithGlare,             C::ERROR_CouldNotGetIPLivenessToken,
    C::ERROR_NotALiveFace,               C::ERROR_CouldNotAccessLivenessData,
    C::ERROR_CouldNotAccessCredential,   C::ERROR_USER_CANCELED_ACTIVITY,
    C::ERROR_INVALID_PARAMETER,          C::ERROR_KelmoInvalidFormat,
    C::ERROR_EChipReadError,             C::ERROR_InvalidNfcTag,
    C::ERROR_InvalidNfcKeyFormatting,
};

constexpr bool allNegativeAndDistinct() {
  for (std::size_t i = 0; i < kAllCodes.size(); ++i) {
    if (kAllCodes[i] >= 0) return false;
    for (std::size_t j = i + 1; j < kAllCodes.size(); ++j) {
      if (kAllCodes[i] == kAllCodes[j]) return false;
    }
  }
  return true;
}
static_assert(allNegativeAndDistinct(),
              "error codes must be negative and distinct");

}  // namespace
}  // namespace tavuro
