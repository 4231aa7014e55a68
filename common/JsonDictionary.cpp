// JsonDictionary: a view of one object node of a shared document of the
// JSON reader (see common/JsonAccess.h).
#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"

namespace tavuro {

using detail::JsonAccess;

JsonDictionary::JsonDictionary() noexcept = default;

JsonDictionary::JsonDictionary(std::shared_ptr<const detail::JsonDocument> document,
                               const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

std::size_t JsonDictionary::size() const noexcept {
  return node_ == nullptr ? 0 : JsonAccess::node(node_)->size;
}

bool JsonDictionary::contains(std::string_view key) const noexcept {
  return JsonAccess::find(*this, key) != nullptr;
}

std::optional<JsonValue> JsonDictionary::find(std::string_view key) const noexcept {
  const platform::JsonNode* value = JsonAccess::find(*this, key);
  if (value == nullptr) return std::nullopt;
  return JsonValue(document_, JsonAccess::handle(value));
}

// Members are stored as key node, value node, key node, value node, ...

std::string_view JsonDictionary::keyAt(std::size_t index) const noexcept {
  if (index >= size()) return {};
  const platform::JsonNode& key = JsonAccess::node(node_)->payload.children[2 * index];
  return std::string_view(key.payload.chars, key.size);
}

JsonValue JsonDictionary::valueAt(std::size_t index) const noexcept {
  if (index >= size()) return JsonValue();
  const platform::JsonNode* value = JsonAccess::node(node_)->payload.children + 2 * index + 1;
  return JsonValue(document_, JsonAccess::handle(value));
}

}  // namespace tavuro
