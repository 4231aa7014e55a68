// Fuzz target for the JSON reader. Beyond "no crash, no leak", it checks:
//  * a failure comes with a one-line description and no value;
//  * every key of a dictionary finds its own value, a key it lacks finds
//    nothing;
//  * writing the value out and reading it again gives the same text
//    (strings, number kinds and doubles survive bit for bit), the second
//    reading built in the node memory that the first one left to the pool.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "common/JsonAccess.h"
#include "platform/Json.h"

namespace {

using tavuro::JsonValue;

void check(bool condition) {
  if (!condition) __builtin_trap();
}

void writeString(std::string_view text, std::string& out) {
  char escape[8];
  out += '"';
  for (const char c : text) {
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned char>(c));
    out +=
        c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20 ? escape : std::string(1, c);
  }
  out += '"';
}

void write(const JsonValue& value, std::string& out) {
  char number[40];
  switch (value.kind()) {
    case JsonValue::Kind::Null: out += "null"; return;
    case JsonValue::Kind::Boolean: out += *value.boolValue() ? "true" : "false"; return;
    case JsonValue::Kind::String: writeString(*value.stringValue(), out); return;
    case JsonValue::Kind::Number:
      if (value.numberKind() == JsonValue::NumberKind::Int64) {
        out += std::to_string(*value.int64Value());
      } else if (value.numberKind() == JsonValue::NumberKind::UInt64) {
        out += std::to_string(*value.uint64Value());
      } else {
        std::snprintf(number, sizeof number, "%.17g", *value.doubleValue());
        out += number;
        // Keep it a double when read back: "-0" or "12" would be integers.
        if (std::string_view(number).find_first_of(".e") == std::string_view::npos) out += ".0";
      }
      return;
    case JsonValue::Kind::Array: {
      const tavuro::JsonArray array = *value.arrayValue();
      out += '[';
      for (std::size_t i = 0; i < array.size(); ++i) {
        if (i) out += ',';
        write(array[i], out);
      }
      out += ']';
      return;
    }
    case JsonValue::Kind::Object: {
      const std::optional<tavuro::JsonDictionary> object = value.dictionaryValue();
      out += '{';
      for (std::size_t i = 0; i < object->size(); ++i) {
        const std::string key(object->keyAt(i));
        const JsonValue member = object->valueAt(i);
        // Keys are unique, so a lookup must find this very member.
        const std::optional<JsonValue> found = object->find(key);
        check(found && found->kind() == member.kind());
        check(!object->contains(key + '\xff'));  // no key read from a text ends in 0xFF
        out += i ? "," : "";
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
  check(result.value.has_value() == result.errorDescription.empty());
  check(result.errorDescription.find('\n') == std::string::npos);
  if (result.value) {
    check(result.value->arrayValue() || result.value->dictionaryValue());
    write(*result.value, text);
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string first =
      readAndWrite(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!first.empty()) check(readAndWrite(first) == first);
  // Each input starts with an empty pool, so that a failure replays alone.
  tavuro::platform::releaseJsonMemory();
  return 0;
}
