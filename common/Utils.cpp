#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"
#include "platform/DateFormat.h"
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

namespace {

// The stored value under `key`, or null when the dictionary is absent or has
// no such key. A borrowed pointer: the caller's dictionary keeps it alive.
const platform::JsonNode* lookUp(const std::optional<JsonDictionary>& jsonDict,
                                 const std::string& key) noexcept {
  if (!jsonDict) return nullptr;
  return detail::JsonAccess::find(*jsonDict, key);
}

}  // namespace

std::optional<JsonDictionary> Utils::convertToDictionary(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  return detail::dictionaryOfText(*text);
}

std::optional<JsonDictionary> detail::dictionaryOfText(std::string_view text) {
  detail::JsonReadResult parsed = detail::readJson(text);
  if (!parsed.value) {
    try {
      const std::string line = parsed.errorDescription + "\n";
      std::fwrite(line.data(), 1, line.size(), stdout);
    } catch (const std::bad_alloc&) {
      // Out of memory for the message as well: the result is absent anyway.
    }
    return std::nullopt;
  }
  return parsed.value->dictionaryValue();  // absent, silently, for an array
}

std::int64_t Utils::getIntValue(const std::optional<JsonDictionary>& jsonDict,
                                const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  return node == nullptr ? 0 : platform::exactInt64(*node).value_or(0);
}

double Utils::getDoubleValue(const std::optional<JsonDictionary>& jsonDict,
                             const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  return node == nullptr ? 0.0 : platform::exactDouble(*node).value_or(0.0);
}

std::string Utils::getStringValue(const std::optional<JsonDictionary>& jsonDict,
                                  const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  if (node == nullptr || node->type != platform::NodeType::String) return {};
  try {
    return std::string(node->payload.chars, node->size);
  } catch (const std::bad_alloc&) {
    return {};
  }
}

bool Utils::getBooleanValue(const std::optional<JsonDictionary>& jsonDict, const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  return node != nullptr && platform::exactBool(*node).value_or(false);
}

std::optional<JsonDictionary> Utils::getObjectValue(const std::optional<JsonDictionary>& jsonDict,
                                                    const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  if (node == nullptr || node->type != platform::NodeType::Object) return std::nullopt;
  return detail::JsonAccess::dictionary(*jsonDict, node);
}

std::optional<JsonArray> Utils::getArrayValue(const std::optional<JsonDictionary>& jsonDict,
                                              const std::string& key) {
  const platform::JsonNode* node = lookUp(jsonDict, key);
  if (node == nullptr || node->type != platform::NodeType::Array) return std::nullopt;
  return detail::JsonAccess::array(*jsonDict, node);
}

std::optional<JsonArray> Utils::getArrayValueFromJson(const std::optional<JsonDictionary>& jsonDict,
                                                      const std::string& key) {
  return getArrayValue(jsonDict, key);
}

// ---------------------------------------------------------------------------
// Date fields
// ---------------------------------------------------------------------------

namespace {

struct DateFieldDigits {
  bool negative = false;
  bool signAllowed = true;
  bool anyDigit = false;
  std::uint64_t magnitude = 0;

  // False when `c` cannot continue a signed decimal int64.
  bool take(char c) {
    if (signAllowed && (c == '+' || c == '-')) {
      negative = c == '-';
      signAllowed = false;
      return true;
    }
    if (c < '0' || c > '9') return false;
    signAllowed = false;
    anyDigit = true;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    const std::uint64_t limit = negative ? std::uint64_t{1} << 63 : (std::uint64_t{1} << 63) - 1;
    if (magnitude > (limit - digit) / 10) return false;
    magnitude = magnitude * 10 + digit;
    return true;
  }

  [[nodiscard]] std::int64_t value() const {
    if (!negative || magnitude == 0) return static_cast<std::int64_t>(magnitude);
    // Goes through magnitude - 1 so that 2^63 itself never has to fit.
    return -static_cast<std::int64_t>(magnitude - 1) - 1;
  }
};

// The millisecond count left once every "Date", "/", "(" and ")" is removed,
// if what is left is a signed decimal int64 and nothing else. One walk that
// skips "Date" wherever a match starts and the three marker characters
// anywhere leaves the same text as four replace-all passes in that order:
// the later passes remove single characters and the first never runs again,
// so a "Date" that they bring together stays, and fails the parse either way.
std::optional<std::int64_t> dateFieldMilliseconds(std::string_view field) {
  constexpr std::string_view kWord = "Date";
  DateFieldDigits digits;
  std::size_t i = 0;
  while (i < field.size()) {
    if (field[i] == 'D' && field.substr(i, kWord.size()) == kWord) {
      i += kWord.size();
      continue;
    }
    const char c = field[i++];
    if (c == '/' || c == '(' || c == ')') continue;
    if (!digits.take(c)) return std::nullopt;
  }
  if (!digits.anyDigit) return std::nullopt;
  return digits.value();
}

}  // namespace

std::optional<std::string> Utils::dateFieldToDateString(const std::optional<std::string>& dateStr) {
  if (!dateStr) {
    std::fputs("TavuroCommon: Utils::dateFieldToDateString needs a date text, got none\n", stderr);
    std::abort();
  }
  const std::optional<std::int64_t> milliseconds = dateFieldMilliseconds(*dateStr);
  if (!milliseconds) return dateStr;
  // Integer division truncates toward zero: the milliseconds are dropped
  // before the day is found, so -1500 ms is the second before 1970.
  return platform::formatDateMMddyyyyGMT(*milliseconds / 1000);
}

}  // namespace tavuro
