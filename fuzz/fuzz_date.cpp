// Utils::dateFieldToDateString on arbitrary text: the argument comes back
// unchanged or a date of the shape MM-dd-yyyy does.
#include <cstddef>
#include <cstdint>
#include <string>

#include "TavuroCommon/TavuroCommon.h"

namespace {

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
  if (!result || (*result != input && !isDate(*result))) __builtin_trap();
  return 0;
}
