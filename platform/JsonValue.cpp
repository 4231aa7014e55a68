// JsonValue, JsonArray and JsonDictionary: thin views of one node of a
// shared document.
#include <utility>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/JsonDocument.h"

namespace tavuro {

using detail::JsonNode;
using detail::NodeType;

// ---------------------------------------------------------------------------
// JsonValue
// ---------------------------------------------------------------------------

JsonValue::JsonValue() noexcept = default;

JsonValue::JsonValue(std::shared_ptr<const detail::JsonDocument> document,
                     const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

JsonValue::Kind JsonValue::kind() const noexcept {
  if (node_ == nullptr) return Kind::Null;
  switch (node_->type) {
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
  return detail::exactBool(*node_);
}

std::optional<JsonValue::NumberKind> JsonValue::numberKind() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  switch (node_->type) {
    case NodeType::Int64: return NumberKind::Int64;
    case NodeType::UInt64: return NumberKind::UInt64;
    case NodeType::Double: return NumberKind::Double;
    default: return std::nullopt;
  }
}

std::optional<std::int64_t> JsonValue::int64Value() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return detail::exactInt64(*node_);
}

std::optional<std::uint64_t> JsonValue::uint64Value() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return detail::exactUInt64(*node_);
}

std::optional<double> JsonValue::doubleValue() const noexcept {
  if (node_ == nullptr) return std::nullopt;
  return detail::exactDouble(*node_);
}

std::optional<std::string_view> JsonValue::stringValue() const noexcept {
  if (node_ == nullptr || node_->type != NodeType::String) return std::nullopt;
  return std::string_view(node_->payload.chars, node_->size);
}

std::optional<JsonArray> JsonValue::arrayValue() const {
  if (node_ == nullptr || node_->type != NodeType::Array) return std::nullopt;
  return JsonArray(document_, node_);
}

std::optional<JsonDictionary> JsonValue::dictionaryValue() const {
  if (node_ == nullptr || node_->type != NodeType::Object) return std::nullopt;
  return JsonDictionary(document_, node_);
}

// ---------------------------------------------------------------------------
// JsonArray
// ---------------------------------------------------------------------------

JsonArray::JsonArray() noexcept = default;

JsonArray::JsonArray(std::shared_ptr<const detail::JsonDocument> document,
                     const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

std::size_t JsonArray::size() const noexcept {
  return node_ == nullptr ? 0 : node_->size;
}

JsonValue JsonArray::operator[](std::size_t index) const noexcept {
  if (index >= size()) return JsonValue();
  return JsonValue(document_, node_->payload.children + index);
}

// ---------------------------------------------------------------------------
// JsonDictionary
// ---------------------------------------------------------------------------

JsonDictionary::JsonDictionary() noexcept = default;

JsonDictionary::JsonDictionary(std::shared_ptr<const detail::JsonDocument> document,
                               const detail::JsonNode* node) noexcept
    : document_(std::move(document)), node_(node) {}

std::size_t JsonDictionary::size() const noexcept {
  return node_ == nullptr ? 0 : node_->size;
}

bool JsonDictionary::contains(std::string_view key) const noexcept {
  return detail::JsonAccess::find(*this, key) != nullptr;
}

std::optional<JsonValue> JsonDictionary::find(std::string_view key) const noexcept {
  const JsonNode* value = detail::JsonAccess::find(*this, key);
  if (value == nullptr) return std::nullopt;
  return JsonValue(document_, value);
}

std::string_view JsonDictionary::keyAt(std::size_t index) const noexcept {
  if (index >= size()) return {};
  const JsonNode& key = node_->payload.children[2 * index];
  return std::string_view(key.payload.chars, key.size);
}

JsonValue JsonDictionary::valueAt(std::size_t index) const noexcept {
  if (index >= size()) return JsonValue();
  return JsonValue(document_, node_->payload.children + 2 * index + 1);
}

}  // namespace tavuro
