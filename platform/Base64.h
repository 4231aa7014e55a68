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

/// Lenient decoding, as the platform's decoder with its option to ignore
/// unknown characters: characters outside A-Z a-z 0-9 + / and "=" are
/// skipped, and the data ends at the first "=". nullopt when the last group
/// of data is not padded as base64 requires: one character ("AAAAA"), two
/// without "==" ("AA", "AA="), three without "=" ("AAA"); when a "=" after
/// complete groups is followed by more data ("AAAA=A") or has no data before
/// it ("=="); and for a text with neither data nor "=" whose length is no
/// multiple of four ("_"). After the padding of a last group of two or three
/// characters, the rest is ignored ("AA==AAAA" is one byte).
[[nodiscard]] std::optional<std::vector<std::uint8_t>> base64DecodeLenient(std::string_view text);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_BASE64_H_
