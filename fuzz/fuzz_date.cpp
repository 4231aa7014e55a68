// Utils::dateFieldToDateString on arbitrary text, against a slow model that
// does literally what the conversion is defined as: four replace-all passes
// ("Date", "/", "(", ")"), a strict signed 64-bit parse, the argument back
// on failure. A date must also have the shape MM-dd-yyyy.
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/DateFormat.h"

namespace {

std::string modelResult(const std::string& field) {
  std::string text = field;
  for (const std::string_view word : {"Date", "/", "(", ")"}) {
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) {
      text.erase(at, word.size());
    }
  }
  // An optional "+" (not followed by "-") or "-", then digits, within int64.
  const bool plus = !text.empty() && text[0] == '+' && (text.size() < 2 || text[1] != '-');
  std::int64_t milliseconds = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data() + (plus ? 1 : 0), end, milliseconds);
  if (parsed.ec != std::errc() || parsed.ptr != end) return field;
  return tavuro::platform::formatDateMMddyyyyGMT(milliseconds / 1000);
}

bool isDate(const std::string& text) {
  // The calendar's range ends in year 5838270: four to seven digits, padded
  // to four only.
  if (text.size() < 10 || text.size() > 13 || text[2] != '-' || text[5] != '-') return false;
  for (const std::size_t i : {0, 1, 3, 4}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  const int month = std::stoi(text.substr(0, 2));
  const int day = std::stoi(text.substr(3, 2));
  return month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
         text.find_first_not_of("0123456789", 6) == std::string::npos &&
         (text.size() == 10 || text[6] != '0');
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
