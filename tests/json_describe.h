// A JSON value as one line of text, for comparing whole documents:
// null, true, false, i<int64>, u<uint64>, d<%.17g>, "text" (the bytes as
// stored), [a,b], {key:value,...} in stored order, a key that the object's
// own lookup misses marked by a 0xFF byte before it (never part of a key).
#ifndef TAVURO_TESTS_JSON_DESCRIBE_H_
#define TAVURO_TESTS_JSON_DESCRIBE_H_

#include <cstdio>
#include <string>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro::test {

inline std::string describeDouble(double value) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "d%.17g", value);
  return buffer;
}

inline std::string describe(const JsonValue& value) {
  std::string out;
  switch (value.kind()) {
    case JsonValue::Kind::Null: return "null";
    case JsonValue::Kind::Boolean: return *value.boolValue() ? "true" : "false";
    case JsonValue::Kind::String: return "\"" + std::string(*value.stringValue()) + "\"";
    case JsonValue::Kind::Number:
      if (value.numberKind() == JsonValue::NumberKind::Int64) {
        return "i" + std::to_string(*value.int64Value());
      }
      if (value.numberKind() == JsonValue::NumberKind::UInt64) {
        return "u" + std::to_string(*value.uint64Value());
      }
      return describeDouble(*value.doubleValue());
    case JsonValue::Kind::Array: {
      const JsonArray array = *value.arrayValue();
      for (std::size_t i = 0; i < array.size(); ++i) out += (i ? "," : "") + describe(array[i]);
      return "[" + out + "]";
    }
    case JsonValue::Kind::Object: {
      const JsonDictionary object = *value.dictionaryValue();
      for (std::size_t i = 0; i < object.size(); ++i) {
        const std::string key(object.keyAt(i));
        out += (i ? "," : "") + std::string(object.find(key) ? "" : "\xFF") + key + ":" +
               describe(object.valueAt(i));
      }
      return "{" + out + "}";
    }
  }
  return "?";
}

}  // namespace tavuro::test

#endif  // TAVURO_TESTS_JSON_DESCRIBE_H_
