// The library's side of fidelity.swift: batches on standard input (u32 count,
// then u8 operation, u32 size, bytes each), answers (u32 size, bytes) in order
// on standard output. "!" is absent; texts are "s<size>:<bytes>".
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "common/JsonAccess.h"
#include "platform/Base64.h"
#include "platform/Plist.h"

namespace {

std::uint32_t u32(const void* in) {  // little-endian, as is every machine this runs on
  std::uint32_t value = 0;
  return *static_cast<std::uint32_t*>(std::memcpy(&value, in, 4));
}

std::string text(std::string_view bytes) {
  return "s" + std::to_string(bytes.size()) + ":" + std::string(bytes);
}

// "#<int64>,<double bits in hex>;": what the getters give.
std::string number(std::int64_t integer, double real) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &real, sizeof bits);
  char out[64];
  std::snprintf(out, sizeof out, "#%lld,%llx;", static_cast<long long>(integer),
                static_cast<unsigned long long>(bits));
  return out;
}

std::string tree(const tavuro::JsonValue& value);

// Members in byte order of their keys; numbers through the typed getters.
std::string tree(const tavuro::JsonDictionary& dictionary) {
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < dictionary.size(); ++i) keys.emplace_back(dictionary.keyAt(i));
  std::sort(keys.begin(), keys.end());
  const std::optional<tavuro::JsonDictionary> held = dictionary;
  std::string out = "{";
  for (const std::string& key : keys) {
    const tavuro::JsonValue value = *dictionary.find(key);
    out += text(key) + (value.kind() == tavuro::JsonValue::Kind::Number
                            ? number(tavuro::Utils::getIntValue(held, key),
                                     tavuro::Utils::getDoubleValue(held, key))
                            : tree(value));
  }
  return out + "}";
}

std::string tree(const tavuro::JsonValue& value) {
  using Kind = tavuro::JsonValue::Kind;
  switch (value.kind()) {
    case Kind::Null: return "n";
    case Kind::Boolean: return *value.boolValue() ? "T" : "F";
    case Kind::Number:
      return number(value.int64Value().value_or(0), value.doubleValue().value_or(0.0));
    case Kind::String: return text(*value.stringValue());
    case Kind::Array: {
      const tavuro::JsonArray array = *value.arrayValue();
      std::string out = "[";
      for (std::size_t i = 0; i < array.size(); ++i) out += tree(array[i]);
      return out + "]";
    }
    case Kind::Object: return tree(*value.dictionaryValue());
  }
  return "";
}

// The public entry decides about objects; the reader's root shows arrays.
std::string json(const std::string& in) {
  const std::optional<tavuro::JsonDictionary> dictionary = tavuro::Utils::convertToDictionary(in);
  const tavuro::detail::JsonReadResult read = tavuro::detail::readJson(in);
  if (!read.value) return "!" + read.errorDescription;
  return dictionary ? tree(*dictionary) : tree(*read.value);
}

template <typename Bytes>
std::string bytes(const std::optional<Bytes>& decoded) {
  return decoded ? "=" + std::string(decoded->begin(), decoded->end()) : "!";
}

std::string plist(const std::optional<std::map<std::string, std::string>>& dictionary) {
  if (!dictionary) return "!";
  std::string out;
  for (const auto& [key, value] : *dictionary) out += text(key) + text(value);
  return out;
}

std::map<std::string, std::string> dictionaryOf(const std::string& in) {
  std::map<std::string, std::string> dictionary;
  std::string key;
  for (std::size_t at = 0, colon, n = 0; (colon = in.find(':', at)) != std::string::npos; ++n) {
    const std::size_t size = std::stoul(in.substr(at + 1, colon - at - 1));
    (n % 2 == 0 ? key : dictionary[key]) = in.substr(colon + 1, size);
    at = colon + 1 + size;
  }
  return dictionary;
}

std::string answer(char operation, const std::string& in) {
  static const tavuro::TavuroJwtParser parser;
  static tavuro::detail::CredentialStore store(
      {[] { return tavuro::Instant{}; }, [] { return std::optional<std::string>(); },
       [](const std::string&, std::string_view) { return false; }});
  switch (operation) {
    case 'J': return json(in);
    case 'B': return bytes(tavuro::platform::base64DecodeLenient(in));
    case 'U': return bytes(parser.base64UrlDecode(in));
    case 'H':
      store.setUsername(in.substr(4, u32(in.data())));
      store.setPassword(in.substr(4 + u32(in.data())));
      return store.basicAuthHeader().value_or("!");
    case 'P': return plist(tavuro::platform::readPlistStringDictionary(in));
    case 'W': return tavuro::platform::writeXmlPlist(dictionaryOf(in));
    case 'D': return tavuro::Utils::dateFieldToDateString(in).value_or("!");
    default: std::exit(2);
  }
}

}  // namespace

int main() {
  // The line convertToDictionary prints on a parse error goes nowhere.
  std::FILE* answers = fdopen(dup(1), "wb");
  if (answers == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  char head[5];
  while (std::fread(head, 1, 4, stdin) == 4) {
    std::vector<std::pair<char, std::string>> requests(u32(head));
    for (auto& [operation, in] : requests) {
      if (std::fread(head, 1, 5, stdin) != 5) return 1;
      in.resize(u32(head + 1));
      if (std::fread(in.data(), 1, in.size(), stdin) != in.size()) return 1;
      operation = head[0];
    }
    for (const auto& [operation, in] : requests) {
      const std::string out = answer(operation, in);
      const auto size = static_cast<std::uint32_t>(out.size());
      std::fwrite(&size, 4, 1, answers);
      std::fwrite(out.data(), 1, out.size(), answers);
    }
    std::fflush(answers);
  }
  return 0;
}
