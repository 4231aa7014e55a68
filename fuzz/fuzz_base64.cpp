// Lenient base64 decoding of arbitrary text, checked against a plain
// character-at-a-time decoder of the same rule, and the encode-then-decode
// round trip.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/Base64.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavuro::platform;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  // The rule: alphabet characters before the first "=" count, others are
  // skipped; a remainder of one character makes the text undecodable, other
  // leftover bits are dropped.
  static constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::optional<std::vector<std::uint8_t>> expected(std::in_place);
  std::uint32_t bits = 0;  // only the low bitCount bits are pending
  int bitCount = 0;
  std::size_t characters = 0;
  for (const char c : input.substr(0, input.find('='))) {
    const std::size_t sextet = kAlphabet.find(c);
    if (sextet == std::string_view::npos) continue;
    ++characters;
    bits = (bits << 6) | static_cast<std::uint32_t>(sextet);
    bitCount += 6;
    if (bitCount >= 8) {
      bitCount -= 8;
      expected->push_back(static_cast<std::uint8_t>(bits >> bitCount));
    }
  }
  if (characters % 4 == 1) expected.reset();
  if (base64DecodeLenient(input) != expected) __builtin_trap();

  const auto decoded = base64DecodeLenient(base64Encode(input));
  if (!decoded ||
      std::string_view(reinterpret_cast<const char*>(decoded->data()), decoded->size()) != input) {
    __builtin_trap();
  }
  return 0;
}
