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
// characters before the first "=" are the data, others are skipped; a last
// group of one character, of two without "==" or of three without "=" is
// undecodable, as is data after the "=" of whole groups or a "=" with no
// data before it; a text with neither data nor "=" decodes only when its
// length is a multiple of four. Leftover bits are dropped.
std::optional<std::vector<std::uint8_t>> referenceDecode(std::string_view text) {
  static constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::vector<std::uint8_t> bytes;
  std::uint32_t bits = 0;
  int bitCount = 0;
  std::size_t characters = 0;
  std::size_t i = 0;
  bool padded = false;
  for (; i < text.size() && !padded; ++i) {
    padded = text[i] == '=';
    const std::size_t sextet = kAlphabet.find(text[i]);
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
  int padsBeforeData = padded ? 1 : 0;
  bool dataAfterPadding = false;
  for (; i < text.size(); ++i) {
    if (text[i] == '=') {
      if (!dataAfterPadding) ++padsBeforeData;
    } else if (kAlphabet.find(text[i]) != std::string_view::npos) {
      dataAfterPadding = true;
    }
  }
  bool complete = false;
  switch (characters % 4) {
    case 0:
      complete =
          padded ? characters > 0 && !dataAfterPadding : characters > 0 || text.size() % 4 == 0;
      break;
    case 2: complete = padsBeforeData >= 2; break;
    case 3: complete = padded; break;
    default: break;
  }
  if (!complete) return std::nullopt;
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
