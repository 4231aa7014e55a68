// Utils::dateFieldToDateString on arbitrary text, against a slow model that
// does literally what the conversion is defined as: four replace-all passes
// ("Date", "/", "(", ")"), a strict signed 64-bit parse, the argument back
// on failure. The result must also have the shape MM-dd-yyyy.
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/DateFormat.h"

namespace {

std::string removeAll(const std::string& text, std::string_view word) {
  std::string out;
  std::size_t from = 0;
  for (std::size_t at; (at = text.find(word, from)) != std::string::npos; from = at + word.size()) {
    out.append(text, from, at - from);
  }
  return out.append(text, from, std::string::npos);
}

// An optional "+" or "-", then one or more digits, within the int64 range.
std::optional<std::int64_t> parseStrictInt64(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string modelResult(const std::string& field) {
  std::string text = field;
  for (std::string_view word : {"Date", "/", "(", ")"}) text = removeAll(text, word);
  const std::optional<std::int64_t> milliseconds = parseStrictInt64(text);
  if (!milliseconds) return field;
  return tavuro::platform::formatDateMMddyyyyGMT(*milliseconds / 1000);
}

int twoDigits(const std::string& text, std::size_t at) {
  const char high = text[at];
  const char low = text[at + 1];
  if (high < '0' || high > '9' || low < '0' || low > '9') return -1;
  return (high - '0') * 10 + (low - '0');
}

bool isDate(const std::string& text) {
  // The calendar's range ends in year 5838270: at most seven digits.
  if (text.size() < 10 || text.size() > 13 || text[2] != '-' || text[5] != '-') return false;
  const int month = twoDigits(text, 0);
  const int day = twoDigits(text, 3);
  if (month < 1 || month > 12 || day < 1 || day > 31) return false;
  for (std::size_t i = 6; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return text.size() == 10 || text[6] != '0';  // padded to four digits only
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const auto result = tavuro::Utils::dateFieldToDateString(input);
  // Beyond the calendar's range the result is empty.
  if (!result || (*result != input && !result->empty() && !isDate(*result))) __builtin_trap();
  if (*result != modelResult(input)) __builtin_trap();
  return 0;
}
