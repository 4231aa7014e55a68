// JsonValue: a view of one node of a shared document of the JSON reader
// (see common/JsonAccess.h).
#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"

namespace tavuro {

using detail::JsonAccess;
using platform::NodeType;

JsonValue::JsonValue() noexcept = default;

JsonValue::JsonValue(std::shared_ptr<const detail::JsonDocument> document,
                     const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

JsonValue::Kind JsonValue::kind() const noexcept {
  if (node_ == nullptr) return Kind::Null;
  switch (JsonAccess::node(node_)->type) {
    case NodeType::Null: return Kind::Null;
    case NodeType::False:
    case NodeType::True: return Kind::Boolean;
    case NodeType::Int64:
    case NodeType::UInt64:
    case NodeType::Double: return Kind::Number;
    case NodeType::String: return Kind::String;
    case NodeType::Array: return Kind::Array;
    case NodeType::Object: return Kind::Object;
  }
  return Kind::Null;
}

std::optional<bool> JsonValue::boolValue() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return platform::exactBool(*JsonAccess::node(node_));
}

std::optional<JsonValue::NumberKind> JsonValue::numberKind() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  switch (JsonAccess::node(node_)->type) {
    case NodeType::Int64: return NumberKind::Int64;
    case NodeType::UInt64: return NumberKind::UInt64;
    case NodeType::Double: return NumberKind::Double;
    default: return std::nullopt;
  }
}

std::optional<std::int64_t> JsonValue::int64Value() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return platform::exactInt64(*JsonAccess::node(node_));
}

std::optional<std::uint64_t> JsonValue::uint64Value() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return platform::exactUInt64(*JsonAccess::node(node_));
}

std::optional<double> JsonValue::doubleValue() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return platform::exactDouble(*JsonAccess::node(node_));
}

std::optional<std::string_view> JsonValue::stringValue() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  const platform::JsonNode& node = *JsonAccess::node(node_);
  if (node.type != NodeType::String) return std::nullopt;
  return std::string_view(node.payload.chars, node.size);
}

std::optional<JsonArray> JsonValue::arrayValue() const {
  if (node_ == nullptr || JsonAccess::node(node_)->type != NodeType::Array) return std::nullopt;
  return JsonArray(document_, node_);
}

std::optional<JsonDictionary> JsonValue::dictionaryValue() const {
  if (node_ == nullptr || JsonAccess::node(node_)->type != NodeType::Object) return std::nullopt;
  return JsonDictionary(document_, node_);
}

}  // namespace tavuro
