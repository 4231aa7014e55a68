// How the public JSON types stand on the JSON reader of platform/.
//
// JsonValue, JsonArray and JsonDictionary each hold a shared pointer that
// keeps one document alive and a pointer to one of its nodes. The public
// header declares the two pointee types, detail::JsonDocument and
// detail::JsonNode, and never defines them: they are opaque handles, and the
// objects behind them are the reader's own platform::JsonDocument and
// platform::JsonNode. The conversions between the two live here and nowhere
// else; they are exact round trips of the same address, so a value costs a
// shared pointer and a node pointer and a lookup goes straight to the
// reader's nodes.
//
// The three classes are defined in common/JsonValue.cpp, common/JsonArray.cpp
// and common/JsonDictionary.cpp, one file each.
#ifndef TAVURO_COMMON_JSONACCESS_H_
#define TAVURO_COMMON_JSONACCESS_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Json.h"
#include "platform/JsonDocument.h"

namespace tavuro::detail {

/// The library's own door into the JSON value classes, for code that must
/// not pay for reference counting on every lookup (the `Utils` getters).
struct JsonAccess {
  [[nodiscard]] static const platform::JsonNode* node(const JsonNode* handle) noexcept {
    return reinterpret_cast<const platform::JsonNode*>(handle);
  }
  [[nodiscard]] static const JsonNode* handle(const platform::JsonNode* node) noexcept {
    return reinterpret_cast<const JsonNode*>(node);
  }
  [[nodiscard]] static const platform::JsonDocument& document(
      const std::shared_ptr<const JsonDocument>& handle) noexcept {
    return *reinterpret_cast<const platform::JsonDocument*>(handle.get());
  }

  /// The top-level value of a document the reader made.
  [[nodiscard]] static JsonValue root(
      const std::shared_ptr<const platform::JsonDocument>& document) noexcept {
    const auto* handle = reinterpret_cast<const JsonDocument*>(document.get());
    return JsonValue(std::shared_ptr<const JsonDocument>(document, handle),
                     JsonAccess::handle(&document->root));
  }

  /// The node stored under `key`, or null when there is none. A borrowed
  /// pointer: `dictionary` keeps it alive.
  [[nodiscard]] static const platform::JsonNode* find(const JsonDictionary& dictionary,
                                                      std::string_view key) noexcept {
    if (dictionary.node_ == nullptr) return nullptr;
    return platform::findMember(document(dictionary.document_), *node(dictionary.node_), key);
  }
  /// The object node of `dictionary`; null for a default-made one.
  [[nodiscard]] static const platform::JsonNode* node(const JsonDictionary& dictionary) noexcept {
    return node(dictionary.node_);
  }
  /// `node`, an object or array of the same document as `owner`.
  [[nodiscard]] static JsonDictionary dictionary(const JsonDictionary& owner,
                                                 const platform::JsonNode* node) {
    return JsonDictionary(owner.document_, handle(node));
  }
  [[nodiscard]] static JsonArray array(const JsonDictionary& owner,
                                       const platform::JsonNode* node) {
    return JsonArray(owner.document_, handle(node));
  }
};

struct JsonReadResult {
  /// The top-level object or array; nothing on a parse error.
  std::optional<JsonValue> value;
  /// On a parse error, the reader's one-line description; empty otherwise.
  std::string errorDescription;
};

/// Reads `bytes` with the platform reader and wraps what it made.
[[nodiscard]] inline JsonReadResult readJson(std::string_view bytes) {
  platform::JsonParseResult parsed = platform::parseJson(bytes);
  JsonReadResult result;
  if (parsed.document) result.value = JsonAccess::root(parsed.document);
  result.errorDescription = std::move(parsed.errorDescription);
  return result;
}

/// What `Utils::convertToDictionary` gives for a present text: the dictionary
/// of a JSON object text; nothing for an array (silently) and for text that
/// is not JSON, which also prints the reader's one-line error description on
/// standard output. Defined in common/Utils.cpp.
[[nodiscard]] std::optional<JsonDictionary> dictionaryOfText(std::string_view text);

}  // namespace tavuro::detail

#endif  // TAVURO_COMMON_JSONACCESS_H_
