// `tavuro error`: the kit's error codes and texts, both ways.
#include <cstdio>
#include <optional>
#include <string>

#include "cli.h"

namespace tavuro::tool {
namespace {

struct ErrorEntry {
  const char* codeName;  // nullptr for a text without a code
  std::int64_t code;
  const char* descriptionName;
  const char* text;
};

// Built from the header's constants by name, so a misspelt name does not
// compile and every value and text is the header's own.
#define TAVURO_ENTRY(code, description)                                               \
  ErrorEntry {                                                                        \
#code, TavuroErrorCodes::code, #description, TavuroErrorDescriptions::description \
  }
#define TAVURO_TEXT_ONLY(description)                              \
  ErrorEntry {                                                     \
    nullptr, 0, #description, TavuroErrorDescriptions::description \
  }

constexpr ErrorEntry kErrors[] = {
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
};
#undef TAVURO_ENTRY
#undef TAVURO_TEXT_ONLY

constexpr std::size_t kEntryCount = sizeof kErrors / sizeof kErrors[0];

constexpr bool sameText(const char* a, const char* b) {
  while (*a != '\0' && *a == *b) ++a, ++b;
  return *a == *b;
}

// Lookups by code, name or text must have one answer: codes are negative
// and distinct, and no name or text occurs twice.
constexpr bool tableIsUnambiguous() {
  for (std::size_t i = 0; i < kEntryCount; ++i) {
    if (kErrors[i].codeName != nullptr && kErrors[i].code >= 0) return false;
    for (std::size_t j = i + 1; j < kEntryCount; ++j) {
      if (kErrors[i].codeName && kErrors[j].codeName && kErrors[i].code == kErrors[j].code) {
        return false;
      }
      if (sameText(kErrors[i].descriptionName, kErrors[j].descriptionName) ||
          sameText(kErrors[i].text, kErrors[j].text)) {
        return false;
      }
    }
  }
  return true;
}
static_assert(kEntryCount == 28, "23 codes and 5 texts without a code");
static_assert(tableIsUnambiguous(), "error lookups must be unambiguous");

bool matches(const ErrorEntry& entry, const std::string& query) {
  if (entry.codeName != nullptr &&
      (query == entry.codeName || query == std::to_string(entry.code))) {
    return true;
  }
  return query == entry.descriptionName || query == entry.text;
}

std::string entryJson(const ErrorEntry& entry) {
  const std::string code = entry.codeName ? std::to_string(entry.code) : "null";
  const std::string name = entry.codeName ? jsonQuote(entry.codeName) : "null";
  return "{\"code\":" + code + ",\"name\":" + name +
         ",\"descriptionName\":" + jsonQuote(entry.descriptionName) +
         ",\"description\":" + jsonQuote(entry.text) + "}";
}

void printEntry(const ErrorEntry& entry) {
  if (entry.codeName != nullptr) {
    std::printf("%4lld  %-38s %-42s \"%s\"\n", static_cast<long long>(entry.code), entry.codeName,
                entry.descriptionName, entry.text);
  } else {
    std::printf("%4s  %-38s %-42s \"%s\"\n", "-", "(no code)", entry.descriptionName, entry.text);
  }
}

const char kHelp[] =
    "usage: tavuro error CODE|NAME|TEXT [--json]\n"
    "       tavuro error --list [--json]\n\n"
    "Looks an error up by its code (-5), its code name (ERROR_Network), its\n"
    "description name (ERROR_DESC_Network) or its exact text (\"Network problem\")\n"
    "and prints code, names and text. --list prints the whole table. Exit status\n"
    "1 when nothing matches.\n";

}  // namespace

int runError(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json", "--list"}, {}, 0, 1});
  if (arguments.has("--help")) return showHelp(kHelp);
  const bool list = arguments.has("--list");
  if (list == !arguments.positional.empty()) {
    throw UsageError(list ? "--list takes no argument" : "missing argument");
  }
  const bool json = arguments.has("--json");
  std::string jsonItems;
  bool found = false;
  for (const ErrorEntry& entry : kErrors) {
    if (!list && !matches(entry, arguments.positional[0])) continue;
    found = true;
    if (json) {
      jsonItems += (jsonItems.empty() ? "" : ",") + entryJson(entry);
    } else {
      printEntry(entry);
    }
  }
  if (json && (found || list)) std::printf(list ? "[%s]\n" : "%s\n", jsonItems.c_str());
  if (!found) {
    std::fprintf(stderr, "tavuro error: no error code, name or text '%s'\n",
                 arguments.positional[0].c_str());
    return kFailed;
  }
  return kOk;
}

}  // namespace tavuro::tool
