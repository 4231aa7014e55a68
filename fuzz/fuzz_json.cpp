// Fuzz target for the JSON reader. Beyond "no crash, no leak", it checks:
//  * a failure comes with a one-line description and no value;
//  * every key of a dictionary finds its own value and a key it lacks finds
//    nothing, and the getters agree with the value's own accessors;
//  * writing the value out and reading it again gives the same text
//    (strings, number kinds and doubles survive bit for bit), the second
//    reading built in the node memory that the first one left to the pool.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"
#include "platform/Json.h"

namespace {

void check(bool condition) {
  if (!condition) __builtin_trap();
}

void writeString(std::string_view text, std::string& out) {
  out += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
      out += escape;
    } else {
      out += c;
    }
  }
  out += '"';
}

void write(const tavuro::JsonValue& value, std::string& out) {
  using Kind = tavuro::JsonValue::Kind;
  switch (value.kind()) {
    case Kind::Null: out += "null"; return;
    case Kind::Boolean: out += *value.boolValue() ? "true" : "false"; return;
    case Kind::String: writeString(*value.stringValue(), out); return;
    case Kind::Number: {
      switch (*value.numberKind()) {
        case tavuro::JsonValue::NumberKind::Int64:
          out += std::to_string(*value.int64Value());
          return;
        case tavuro::JsonValue::NumberKind::UInt64:
          out += std::to_string(*value.uint64Value());
          return;
        case tavuro::JsonValue::NumberKind::Double: {
          char buffer[40];
          std::snprintf(buffer, sizeof buffer, "%.17g", *value.doubleValue());
          out += buffer;
          // Keep it a double when read back: "-0" or "12" would be integers.
          if (std::string_view(buffer).find_first_of(".e") == std::string_view::npos) out += ".0";
          return;
        }
      }
      return;
    }
    case Kind::Array: {
      const tavuro::JsonArray array = *value.arrayValue();
      out += '[';
      for (std::size_t i = 0; i < array.size(); ++i) {
        if (i) out += ',';
        write(array[i], out);
      }
      out += ']';
      return;
    }
    case Kind::Object: {
      const tavuro::JsonDictionary object = *value.dictionaryValue();
      const std::optional<tavuro::JsonDictionary> asOptional = object;
      out += '{';
      for (std::size_t i = 0; i < object.size(); ++i) {
        const std::string key(object.keyAt(i));
        const tavuro::JsonValue member = object.valueAt(i);
        // Keys are unique, so a lookup must find this very member.
        const std::optional<tavuro::JsonValue> found = object.find(key);
        check(found && found->kind() == member.kind());
        check(tavuro::Utils::getIntValue(asOptional, key) == member.int64Value().value_or(0));
        check(tavuro::Utils::getBooleanValue(asOptional, key) ==
              member.boolValue().value_or(false));
        const double number = tavuro::Utils::getDoubleValue(asOptional, key);
        check(number == member.doubleValue().value_or(0.0));
        check(tavuro::Utils::getArrayValue(asOptional, key).has_value() ==
              (member.kind() == Kind::Array));
        check(tavuro::Utils::getObjectValue(asOptional, key).has_value() ==
              (member.kind() == Kind::Object));
        // No key read from a text ends in 0xFF, a byte UTF-8 never uses.
        check(!object.contains(key + '\xff'));
        if (i) out += ',';
        writeString(key, out);
        out += ':';
        write(member, out);
      }
      out += '}';
      return;
    }
  }
}

// Reads `bytes`, checks what the reader says, and returns the value written
// out again; empty when `bytes` is no JSON text. The document is gone on
// return, and a large one has left its node chunks to the pool.
std::string readAndWrite(std::string_view bytes) {
  const tavuro::detail::JsonReadResult result = tavuro::detail::readJson(bytes);
  std::string text;
  if (!result.value) {
    check(!result.errorDescription.empty());
    check(result.errorDescription.find('\n') == std::string::npos);
    return text;
  }
  check(result.errorDescription.empty());
  const tavuro::JsonValue::Kind kind = result.value->kind();
  check(kind == tavuro::JsonValue::Kind::Object || kind == tavuro::JsonValue::Kind::Array);
  write(*result.value, text);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string first =
      readAndWrite(std::string_view(reinterpret_cast<const char*>(data), size));
  // Read again: a large document now takes the first one's recycled chunks.
  if (!first.empty()) check(readAndWrite(first) == first);
  // Each input starts with an empty pool, so that a failure replays alone.
  tavuro::platform::releaseJsonMemory();
  return 0;
}
