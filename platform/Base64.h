// Base64 as the phone platform does it: standard alphabet with "=" padding
// and no line breaks for encoding, and a lenient decoder that skips every
// character outside the alphabet.
#ifndef TAVURO_PLATFORM_BASE64_H_
#define TAVURO_PLATFORM_BASE64_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavuro::platform {

/// Standard base64 (RFC 4648 alphabet, "=" padding, no line breaks).
[[nodiscard]] std::string base64Encode(std::string_view bytes);

/// Lenient decoding: characters outside A-Z a-z 0-9 + / and "=" are skipped;
/// decoding stops at the first "="; a final group of two or three alphabet
/// characters gives one or two bytes; a final group of exactly one character
/// makes the text undecodable (nullopt).
[[nodiscard]] std::optional<std::vector<std::uint8_t>> base64DecodeLenient(std::string_view text);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_BASE64_H_
