// UTF-8 encoding and validation shared by the JSON and property-list readers.
#ifndef TAVURO_PLATFORM_UTF8_H_
#define TAVURO_PLATFORM_UTF8_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// Writes the UTF-8 encoding of a Unicode scalar value (no surrogates, at
/// most U+10FFFF; the caller checks) at `out` and returns the end.
inline char* encodeUtf8(std::uint32_t codePoint, char* out) noexcept {
  const auto byte = [](std::uint32_t bits) { return static_cast<char>(bits); };
  if (codePoint < 0x80) {
    *out++ = byte(codePoint);
  } else if (codePoint < 0x800) {
    *out++ = byte(0xC0 | (codePoint >> 6));
    *out++ = byte(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    *out++ = byte(0xE0 | (codePoint >> 12));
    *out++ = byte(0x80 | ((codePoint >> 6) & 0x3F));
    *out++ = byte(0x80 | (codePoint & 0x3F));
  } else {
    *out++ = byte(0xF0 | (codePoint >> 18));
    *out++ = byte(0x80 | ((codePoint >> 12) & 0x3F));
    *out++ = byte(0x80 | ((codePoint >> 6) & 0x3F));
    *out++ = byte(0x80 | (codePoint & 0x3F));
  }
  return out;
}

/// Appends the UTF-8 encoding of a Unicode scalar value to `out`.
inline void appendUtf8(std::string& out, std::uint32_t codePoint) {
  char bytes[4];
  out.append(bytes, encodeUtf8(codePoint, bytes));
}

/// Length of the well-formed UTF-8 character at `text`, whose first byte is
/// 0x80 or above, or 0. Rejects overlong forms, encoded surrogates, code
/// points above U+10FFFF and sequences cut off by `available` (the bytes
/// readable at `text`).
[[nodiscard]] inline unsigned utf8SequenceLength(const char* text, std::size_t available) noexcept {
  const auto* s = reinterpret_cast<const unsigned char*>(text);
  const unsigned lead = s[0];
  const auto isContinuation = [](unsigned c) { return (c & 0xC0U) == 0x80U; };
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) return available >= 2 && isContinuation(s[1]) ? 2 : 0;
  if (lead < 0xF0) {
    const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;   // overlong below
    const unsigned high = lead == 0xED ? 0x9F : 0xBF;  // surrogates above
    return available >= 3 && s[1] >= low && s[1] <= high && isContinuation(s[2]) ? 3 : 0;
  }
  if (lead < 0xF5) {
    const unsigned low = lead == 0xF0 ? 0x90 : 0x80;   // overlong below
    const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;  // beyond U+10FFFF above
    return available >= 4 && s[1] >= low && s[1] <= high && isContinuation(s[2]) &&
                   isContinuation(s[3])
               ? 4
               : 0;
  }
  return 0;
}

/// True when `bytes` is well-formed UTF-8 throughout.
[[nodiscard]] inline bool isValidUtf8(std::string_view bytes) noexcept {
  std::size_t i = 0;
  while (i < bytes.size()) {
    if (static_cast<unsigned char>(bytes[i]) < 0x80) {
      ++i;
      continue;
    }
    const unsigned length = utf8SequenceLength(bytes.data() + i, bytes.size() - i);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_UTF8_H_
