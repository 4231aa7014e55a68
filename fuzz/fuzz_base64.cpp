// Lenient base64 decoding of arbitrary text, checked against the rule it
// follows, and the encode-then-decode round trip.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Base64.h"

namespace {

bool inAlphabet(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
         c == '/';
}

// What the rule says about the length: alphabet characters before the first
// "=" count, others do not; a remainder of one makes the text undecodable.
void checkDecodedLength(std::string_view text) {
  std::size_t characters = 0;
  for (char c : text) {
    if (c == '=') break;
    if (inAlphabet(c)) ++characters;
  }
  const auto decoded = tavuro::platform::base64DecodeLenient(text);
  if (characters % 4 == 1) {
    if (decoded) __builtin_trap();
  } else if (!decoded || decoded->size() != characters * 3 / 4) {
    __builtin_trap();
  }
}

void checkRoundTrip(std::string_view bytes) {
  const auto decoded = tavuro::platform::base64DecodeLenient(tavuro::platform::base64Encode(bytes));
  if (!decoded ||
      std::string_view(reinterpret_cast<const char*>(decoded->data()), decoded->size()) != bytes) {
    __builtin_trap();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  checkDecodedLength(input);
  checkRoundTrip(input);
  return 0;
}
