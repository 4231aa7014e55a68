// The error tables as data, for lookups at run time: every code with its
// names and text, then the texts that have no code.
#include <iterator>
#include <vector>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {
namespace {

using C = TavuroErrorCodes;
using D = TavuroErrorDescriptions;

// Built from the header's constants by name, so every value and text is the
// header's own and a misspelt name does not compile.
#define TAVURO_ENTRY(code, description) \
  { C::code, #code, #description, D::description }
#define TAVURO_TEXT_ONLY(description) \
  { 0, nullptr, #description, D::description }

constexpr TavuroErrorInfo kEntries[] = {
    // BEGIN generated from interface/TavuroCommon.json: error table
    TAVURO_ENTRY(ERROR_InvalidCredentials, ERROR_DESC_InvalidCredentials),
    TAVURO_ENTRY(ERROR_InitializationNotFinished, ERROR_DESC_InitializationNotFinished),
    TAVURO_ENTRY(ERROR_Network, ERROR_DESC_Network),
    TAVURO_ENTRY(ERROR_InvalidJson, ERROR_DESC_InvalidJson),
    TAVURO_ENTRY(ERROR_CouldNotCrop, ERROR_DESC_CouldNotCrop),
    TAVURO_ENTRY(ERROR_CouldNotCreateConnectInstance, ERROR_DESC_CouldNotCreateConnectInstance),
    TAVURO_ENTRY(ERROR_CouldNotUploadConnectImage, ERROR_DESC_CouldNotUploadConnectImage),
    TAVURO_ENTRY(ERROR_CouldNotUploadConnectBarcode, ERROR_DESC_CouldNotUploadConnectBarcode),
    TAVURO_ENTRY(ERROR_CouldNotGetConnectData, ERROR_DESC_CouldNotGetConnectData),
    TAVURO_ENTRY(ERROR_CouldNotClassifyDocument, ERROR_DESC_CouldNotClassifyDocument),
    TAVURO_ENTRY(ERROR_LowResolutionImage, ERROR_DESC_LowResolutionImage),
    TAVURO_ENTRY(ERROR_BlurryImage, ERROR_DESC_BlurryImage),
    TAVURO_ENTRY(ERROR_ImageWithGlare, ERROR_DESC_ImageWithGlare),
    TAVURO_ENTRY(ERROR_CouldNotGetIPLivenessToken, ERROR_DESC_CouldNotGetIPLivenessToken),
    TAVURO_ENTRY(ERROR_NotALiveFace, ERROR_DESC_NotALiveFace),
    TAVURO_ENTRY(ERROR_CouldNotAccessLivenessData, ERROR_DESC_CouldNotAccessLivenessData),
    TAVURO_ENTRY(ERROR_CouldNotAccessCredential, ERROR_DESC_ERROR_CouldNotAccessCredential),
    TAVURO_ENTRY(ERROR_USER_CANCELED_ACTIVITY, ERROR_DESC_USER_CANCELED_ACTIVITY),
    TAVURO_ENTRY(ERROR_INVALID_PARAMETER, ERROR_DESC_INVALID_PARAMETERS),
    TAVURO_ENTRY(ERROR_KelmoInvalidFormat, ERROR_DESC_KelmoInvalidFormat),
    TAVURO_ENTRY(ERROR_EChipReadError, ERROR_DESC_EChipReadError),
    TAVURO_ENTRY(ERROR_InvalidNfcTag, ERROR_DESC_InvalidNfcTag),
    TAVURO_ENTRY(ERROR_InvalidNfcKeyFormatting, ERROR_DESC_InvalidNfcKeyFormatting),
    TAVURO_TEXT_ONLY(ERROR_DESC_InvalidEndpoint),
    TAVURO_TEXT_ONLY(ERROR_DESC_BarcodeCaptureFailed),
    TAVURO_TEXT_ONLY(ERROR_DESC_BarcodeCaptureTimedOut),
    TAVURO_TEXT_ONLY(ERROR_DESC_CardWidthNotSet),
    TAVURO_TEXT_ONLY(ERROR_DESC_CouldNotGetHealthCardData),
    // END generated: error table
};

#undef TAVURO_ENTRY
#undef TAVURO_TEXT_ONLY

constexpr bool sameText(const char* a, const char* b) {
  while (*a != '\0' && *a == *b) ++a, ++b;
  return *a == *b;
}

// Hosts compare against the codes and look entries up by code, name or text,
// so each must have one answer: codes negative and distinct, no text twice.
constexpr bool unambiguous() {
  for (const TavuroErrorInfo& entry : kEntries) {
    if (entry.codeName != nullptr && entry.code >= 0) return false;
    for (const TavuroErrorInfo* other = &entry + 1; other != std::end(kEntries); ++other) {
      if (entry.codeName != nullptr && other->codeName != nullptr && entry.code == other->code) {
        return false;
      }
      if (sameText(entry.description, other->description)) return false;
    }
  }
  return true;
}
static_assert(unambiguous(), "error codes must be negative and distinct, texts distinct");

}  // namespace

std::optional<TavuroErrorInfo> TavuroErrorInfo::forCode(std::int64_t code) noexcept {
  for (const TavuroErrorInfo& entry : kEntries) {
    if (entry.codeName != nullptr && entry.code == code) return entry;
  }
  return std::nullopt;
}

const std::vector<TavuroErrorInfo>& TavuroErrorInfo::all() noexcept {
  static const std::vector<TavuroErrorInfo> entries(std::begin(kEntries), std::end(kEntries));
  return entries;
}

}  // namespace tavuro
