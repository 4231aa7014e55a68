// What the JSON reader does before and after parsing: bringing the input
// bytes into UTF-8 in a padded buffer, and describing a parse error.
#ifndef TAVURO_PLATFORM_JSONINPUT_H_
#define TAVURO_PLATFORM_JSONINPUT_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavuro::platform {

enum class JsonErrorKind : std::uint8_t {
  None,
  UnexpectedEnd,
  UnexpectedCharacter,
  NotAContainer,
  TrailingCharacter,
  ControlCharacter,
  InvalidEscape,
  InvalidUnicodeEscape,
  UnpairedSurrogate,
  InvalidUtf8,
  InvalidNumber,
  NumberOutOfRange,
  TooDeep,
  TooLarge,
  InvalidUtf16,
  InvalidUtf32,
};

/// Zero bytes after the text, so that scanners may read ahead by up to this
/// much without checking for the end.
constexpr std::size_t kJsonPadding = 64;

/// The largest text the reader takes: string lengths and node positions are
/// 32-bit.
constexpr std::size_t kJsonMaxTextSize = 0xFFFFFFFFU - kJsonPadding;

struct JsonInput {
  /// The text as UTF-8 without byte-order mark, followed by kJsonPadding
  /// zero bytes.
  std::unique_ptr<char[]> text;
  std::size_t size = 0;
  /// Set when the bytes are not valid in their detected encoding, or too
  /// many; `errorOffset` is then a position in the UTF-8 form.
  JsonErrorKind error = JsonErrorKind::None;
  std::size_t errorOffset = 0;
};

/// Detects the encoding of `bytes` (UTF-8 with optional byte-order mark, or
/// UTF-16 / UTF-32 of either byte order, found by byte-order mark or by the
/// zero bytes among the first four) and returns the text as padded UTF-8.
[[nodiscard]] JsonInput decodeJsonInput(std::string_view bytes);

/// The one-line description of an error found at `offset` of the UTF-8
/// form of `bytes`, with the line and column there.
[[nodiscard]] std::string describeJsonError(std::string_view bytes, JsonErrorKind kind,
                                            std::size_t offset);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_JSONINPUT_H_
