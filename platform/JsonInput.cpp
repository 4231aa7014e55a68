#include "platform/JsonInput.h"

#include <cstdio>
#include <cstring>

#include "platform/Utf8.h"

namespace tavuro::platform {
namespace {

enum class Encoding { Utf8, Utf16BE, Utf16LE, Utf32BE, Utf32LE };

struct DetectedEncoding {
  Encoding encoding;
  std::size_t byteOrderMarkSize;
};

DetectedEncoding detectEncoding(std::string_view bytes) {
  const std::size_t n = bytes.size();
  const auto b = [&bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (n >= 3 && b(0) == 0xEF && b(1) == 0xBB && b(2) == 0xBF) return {Encoding::Utf8, 3};
  if (n >= 4 && b(0) == 0 && b(1) == 0 && b(2) == 0xFE && b(3) == 0xFF) {
    return {Encoding::Utf32BE, 4};
  }
  // FF FE 00 00 is also UTF-16LE's mark followed by U+0000, which no JSON
  // text can begin with, so UTF-32LE is the only useful reading.
  if (n >= 4 && b(0) == 0xFF && b(1) == 0xFE && b(2) == 0 && b(3) == 0) {
    return {Encoding::Utf32LE, 4};
  }
  if (n >= 2 && b(0) == 0xFE && b(1) == 0xFF) return {Encoding::Utf16BE, 2};
  if (n >= 2 && b(0) == 0xFF && b(1) == 0xFE) return {Encoding::Utf16LE, 2};
  // Without a mark: a JSON text starts with an ASCII character, so the zero
  // bytes around the first one tell the width and the byte order.
  if (n >= 4) {
    if (b(0) == 0 && b(1) == 0) return {Encoding::Utf32BE, 0};
    if (b(0) == 0) return {Encoding::Utf16BE, 0};
    if (b(1) == 0 && b(2) == 0 && b(3) == 0) return {Encoding::Utf32LE, 0};
    if (b(1) == 0) return {Encoding::Utf16LE, 0};
  }
  return {Encoding::Utf8, 0};
}

struct Conversion {
  std::size_t written;
  bool ok;
};

/// The most UTF-8 bytes that `size` bytes of `encoding` can turn into.
std::size_t utf8Bound(std::size_t size, Encoding encoding) {
  if (encoding == Encoding::Utf16BE || encoding == Encoding::Utf16LE) return size / 2 * 3;
  return size;
}

// Converts UTF-16 or UTF-32 to UTF-8 into `out` (room for utf8Bound bytes).
// On an invalid unit, `written` says how far the valid part reached.
Conversion convertToUtf8(std::string_view units, Encoding encoding, char* out) {
  const auto* in = reinterpret_cast<const unsigned char*>(units.data());
  const std::size_t n = units.size();
  char* const start = out;
  const auto result = [&](bool ok) {
    return Conversion{static_cast<std::size_t>(out - start), ok};
  };
  if (encoding == Encoding::Utf16BE || encoding == Encoding::Utf16LE) {
    const bool big = encoding == Encoding::Utf16BE;
    const auto unit = [&](std::size_t i) -> std::uint32_t {
      return big ? (std::uint32_t{in[i]} << 8) | in[i + 1]
                 : (std::uint32_t{in[i + 1]} << 8) | in[i];
    };
    std::size_t i = 0;
    for (; i + 1 < n; i += 2) {
      std::uint32_t cp = unit(i);
      if (cp >= 0xDC00 && cp <= 0xDFFF) return result(false);
      if (cp >= 0xD800 && cp <= 0xDBFF) {
        if (i + 3 >= n) return result(false);
        const std::uint32_t low = unit(i + 2);
        if (low < 0xDC00 || low > 0xDFFF) return result(false);
        cp = 0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
      out = encodeUtf8(cp, out);
    }
    return result(i == n);
  }
  const bool big = encoding == Encoding::Utf32BE;
  std::size_t i = 0;
  for (; i + 3 < n; i += 4) {
    const std::uint32_t cp = big ? (std::uint32_t{in[i]} << 24) | (std::uint32_t{in[i + 1]} << 16) |
                                       (std::uint32_t{in[i + 2]} << 8) | in[i + 3]
                                 : (std::uint32_t{in[i + 3]} << 24) |
                                       (std::uint32_t{in[i + 2]} << 16) |
                                       (std::uint32_t{in[i + 1]} << 8) | in[i];
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return result(false);
    out = encodeUtf8(cp, out);
  }
  return result(i == n);
}

std::string hex(unsigned value, int digits) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "%0*X", digits, value);
  return buffer;
}

/// How the character at `offset` reads in a message: 'x' for visible ASCII,
/// U+XXXX for the rest, "byte 0xNN" for a byte that starts no character.
std::string describeCharacter(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) return "end of input";
  const auto* s = reinterpret_cast<const unsigned char*>(text.data()) + offset;
  const std::size_t left = text.size() - offset;
  const unsigned c = s[0];
  if (c > 0x20 && c < 0x7F) return std::string("'") + static_cast<char>(c) + "'";
  if (c < 0x80) return "U+" + hex(c, 4);
  unsigned length = 0;
  std::uint32_t cp = 0;
  if (c >= 0xC2 && c < 0xE0) {
    length = 2;
    cp = c & 0x1F;
  } else if (c >= 0xE0 && c < 0xF0) {
    length = 3;
    cp = c & 0x0F;
  } else if (c >= 0xF0 && c < 0xF5) {
    length = 4;
    cp = c & 0x07;
  }
  bool valid = length != 0 && length <= left;
  for (unsigned i = 1; valid && i < length; ++i) {
    valid = (s[i] & 0xC0) == 0x80;
    cp = (cp << 6) | (s[i] & 0x3F);
  }
  const std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && cp >= smallest[length] && cp <= 0x10FFFF && (cp < 0xD800 || cp > 0xDFFF);
  if (!valid) return "byte 0x" + hex(c, 2);
  return "'" + std::string(text.substr(offset, length)) + "' (U+" + hex(cp, 4) + ")";
}

std::string position(std::string_view text, std::size_t offset) {
  std::size_t line = 1;
  std::size_t column = 1;
  for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == '\n') {
      ++line;
      column = 1;
    } else if ((c & 0xC0) != 0x80) {  // count characters, not bytes
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string message(std::string_view text, JsonErrorKind kind, std::size_t offset) {
  const std::string where = " at " + position(text, offset) + ".";
  const auto character = [&] { return describeCharacter(text, offset); };
  switch (kind) {
    case JsonErrorKind::None: return {};
    case JsonErrorKind::UnexpectedEnd: return "Unexpected end of input" + where;
    case JsonErrorKind::UnexpectedCharacter: return "Unexpected character " + character() + where;
    case JsonErrorKind::NotAContainer:
      return "Unexpected character " + character() + " at " + position(text, offset) +
             ": a JSON text must be an object or an array.";
    case JsonErrorKind::TrailingCharacter:
      return "Unexpected character " + character() + " after the JSON value" + where;
    case JsonErrorKind::ControlCharacter:
      return "Unescaped control character " + character() + " in a string" + where;
    case JsonErrorKind::InvalidEscape: {
      const std::string next = describeCharacter(text, offset + 1);
      if (next.size() == 3 && next[0] == '\'') {
        return std::string("Invalid escape sequence '\\") + next[1] + "'" + where;
      }
      return "Invalid escape sequence: '\\' followed by " + next + where;
    }
    case JsonErrorKind::InvalidUnicodeEscape:
      return "Invalid \\u escape (four hexadecimal digits expected)" + where;
    case JsonErrorKind::UnpairedSurrogate: return "Unpaired surrogate in a \\u escape" + where;
    case JsonErrorKind::InvalidUtf8: return "Invalid UTF-8 " + character() + " in a string" + where;
    case JsonErrorKind::InvalidNumber: return "Invalid number" + where;
    case JsonErrorKind::NumberOutOfRange:
      return "Number too large or too small for a double" + where;
    case JsonErrorKind::TooDeep: return "Nesting deeper than 512 arrays and objects" + where;
    case JsonErrorKind::TooLarge: return "The JSON text is larger than 4 GB.";
    case JsonErrorKind::InvalidUtf16: return "Invalid UTF-16 input" + where;
    case JsonErrorKind::InvalidUtf32: return "Invalid UTF-32 input" + where;
  }
  return {};
}

std::unique_ptr<char[]> paddedBuffer(std::size_t size) {
  // Plain new[]: the bytes are about to be overwritten, so zeroing them
  // first would only cost time.
  std::unique_ptr<char[]> buffer(new char[size + kJsonPadding]);
  std::memset(buffer.get() + size, 0, kJsonPadding);
  return buffer;
}

}  // namespace

JsonInput decodeJsonInput(std::string_view bytes) {
  JsonInput input;
  const DetectedEncoding detected = detectEncoding(bytes);
  const std::string_view body = bytes.substr(detected.byteOrderMarkSize);
  if (detected.encoding == Encoding::Utf8) {
    if (body.size() > kJsonMaxTextSize) {
      input.error = JsonErrorKind::TooLarge;
      return input;
    }
    input.text = paddedBuffer(body.size());
    if (!body.empty()) std::memcpy(input.text.get(), body.data(), body.size());
    input.size = body.size();
    return input;
  }
  const std::size_t bound = utf8Bound(body.size(), detected.encoding);
  if (bound > kJsonMaxTextSize) {
    input.error = JsonErrorKind::TooLarge;
    return input;
  }
  input.text = paddedBuffer(bound);
  const Conversion conversion = convertToUtf8(body, detected.encoding, input.text.get());
  input.size = conversion.written;
  std::memset(input.text.get() + input.size, 0, kJsonPadding);
  if (!conversion.ok) {
    const bool wide =
        detected.encoding == Encoding::Utf32BE || detected.encoding == Encoding::Utf32LE;
    input.error = wide ? JsonErrorKind::InvalidUtf32 : JsonErrorKind::InvalidUtf16;
    input.errorOffset = conversion.written;
  }
  return input;
}

std::string describeJsonError(std::string_view bytes, JsonErrorKind kind, std::size_t offset) {
  const DetectedEncoding detected = detectEncoding(bytes);
  const std::string_view body = bytes.substr(detected.byteOrderMarkSize);
  if (detected.encoding == Encoding::Utf8) return message(body, kind, offset);
  // The reader changed its own copy while decoding escapes; convert afresh.
  std::string utf8(utf8Bound(body.size(), detected.encoding), '\0');
  utf8.resize(convertToUtf8(body, detected.encoding, utf8.data()).written);
  return message(utf8, kind, offset);
}

}  // namespace tavuro::platform
