// JsonArray: a view of one array node of a shared document of the JSON
// reader (see common/JsonAccess.h).
#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"

namespace tavuro {

JsonArray::JsonArray() noexcept = default;

JsonArray::JsonArray(std::shared_ptr<const detail::JsonDocument> document,
                     const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

std::size_t JsonArray::size() const noexcept {
  return node_ == nullptr ? 0 : detail::JsonAccess::node(node_)->size;
}

JsonValue JsonArray::operator[](std::size_t index) const noexcept {
  if (index >= size()) return JsonValue();
  const platform::JsonNode* element = detail::JsonAccess::node(node_)->payload.children + index;
  return JsonValue(document_, detail::JsonAccess::handle(element));
}

}  // namespace tavuro
