// Shared by the JSON tests: a compact, kind-revealing description of a
// parsed value, so that a table row can state the value it expects.
#ifndef TAVURO_TESTS_JSON_TEST_SUPPORT_H_
#define TAVURO_TESTS_JSON_TEST_SUPPORT_H_

#include <cstdio>
#include <string>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro::testing {

// null, true, false, i<int64>, u<uint64>, d<%.17g>, "text" (bytes outside
// printable ASCII as \xNN), [a,b], {key:value,...} in stored order.
inline std::string describe(const JsonValue& value) {
  char buffer[40];
  switch (value.kind()) {
    case JsonValue::Kind::Null: return "null";
    case JsonValue::Kind::Boolean: return *value.boolValue() ? "true" : "false";
    case JsonValue::Kind::Number:
      switch (*value.numberKind()) {
        case JsonValue::NumberKind::Int64: return "i" + std::to_string(*value.int64Value());
        case JsonValue::NumberKind::UInt64: return "u" + std::to_string(*value.uint64Value());
        case JsonValue::NumberKind::Double:
          std::snprintf(buffer, sizeof buffer, "d%.17g", *value.doubleValue());
          return buffer;
      }
      return "?";
    case JsonValue::Kind::String: {
      std::string out = "\"";
      const std::string_view text = *value.stringValue();
      for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
          out += c;
        } else {
          std::snprintf(buffer, sizeof buffer, "\\x%02X", byte);
          out += buffer;
        }
      }
      return out + "\"";
    }
    case JsonValue::Kind::Array: {
      const JsonArray array = *value.arrayValue();
      std::string out = "[";
      for (std::size_t i = 0; i < array.size(); ++i) {
        out += (i ? "," : "") + describe(array[i]);
      }
      return out + "]";
    }
    case JsonValue::Kind::Object: {
      const JsonDictionary object = *value.dictionaryValue();
      std::string out = "{";
      for (std::size_t i = 0; i < object.size(); ++i) {
        out += (i ? "," : "") + std::string(object.keyAt(i)) + ":" + describe(object.valueAt(i));
      }
      return out + "}";
    }
  }
  return "?";
}

}  // namespace tavuro::testing

#endif  // TAVURO_TESTS_JSON_TEST_SUPPORT_H_
