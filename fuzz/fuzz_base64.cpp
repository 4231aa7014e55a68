// Lenient base64 decoding of arbitrary text, checked against a plain
// character-at-a-time decoder of the same rule, and the encode-then-decode
// round trip.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/Base64.h"

namespace {

// The lenient rule spelled out one character at a time: alphabet
// characters before the first "=" count, others are skipped; a remainder of
// one character makes the text undecodable, other leftover bits are dropped.
std::optional<std::vector<std::uint8_t>> referenceDecode(std::string_view text) {
  static constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<std::uint8_t> bytes;
  std::uint32_t bits = 0;
  int bitCount = 0;
  std::size_t characters = 0;
  for (char c : text) {
    if (c == '=') break;
    const std::size_t sextet = kAlphabet.find(c);
    if (sextet == std::string_view::npos) continue;
    ++characters;
    bits = (bits << 6) | static_cast<std::uint32_t>(sextet);
    bitCount += 6;
    if (bitCount >= 8) {
      bitCount -= 8;
      bytes.push_back(static_cast<std::uint8_t>(bits >> bitCount));
      bits &= (1u << bitCount) - 1;
    }
  }
  if (characters % 4 == 1) return std::nullopt;
  return bytes;
}

void checkAgainstReference(std::string_view text) {
  if (tavuro::platform::base64DecodeLenient(text) != referenceDecode(text)) __builtin_trap();
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
  checkAgainstReference(input);
  checkRoundTrip(input);
  return 0;
}
