// The JSON reader: RFC 8259, with the top level an object or an array only,
// the first of repeated keys kept, nesting limited to 512 levels, and UTF-8,
// UTF-16 or UTF-32 input detected.
//
// Memory: a document holds a copy of its text and 16 bytes per value and per
// key. When a large document goes away, up to 8 MB of its node memory is
// kept for the next parse (see releaseJsonMemory).
#ifndef TAVURO_PLATFORM_JSON_H_
#define TAVURO_PLATFORM_JSON_H_

#include <memory>
#include <string>
#include <string_view>

namespace tavuro::platform {

struct JsonDocument;  // platform/JsonDocument.h

struct JsonParseResult {
  /// The parsed text, its top-level object or array at `root`; null on a
  /// parse error.
  std::shared_ptr<const JsonDocument> document;
  /// On a parse error, one line saying what is wrong and where, such as
  /// "Unexpected character 'x' at line 1, column 7."; empty otherwise.
  std::string errorDescription;
};

/// Parses `bytes`. Never throws for bad input and never recurses deeper
/// than the nesting limit.
[[nodiscard]] JsonParseResult parseJson(std::string_view bytes);

/// Frees the node memory kept from documents that are gone. Documents still
/// alive are not affected.
void releaseJsonMemory() noexcept;

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_JSON_H_
