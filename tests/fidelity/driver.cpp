// The library's side of fidelity.swift. Reads batches from standard input
// and answers each request in order on standard output:
//   batch    u32 count, then count requests
//   request  u8 operation, u32 size, size bytes      (integers little-endian)
//   answer   u32 size, size bytes
// Operations: 'J' JSON text, 'B' lenient base64, 'U' base64url (the JWT
// parser), 'H' Basic header (u32 user size, user, password), 'P' property
// list read, 'W' property list write (a dictionary in the answer form of
// 'P'), 'D' date field. Absent results are "!"; see the encoders below.
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

int answerFd = -1;

bool readExactly(void* data, std::size_t size) {
  auto* at = static_cast<char*>(data);
  while (size > 0) {
    const ssize_t got = read(0, at, size);
    if (got <= 0) return false;
    at += got;
    size -= static_cast<std::size_t>(got);
  }
  return true;
}

void writeAll(const std::string& bytes) {
  const char* at = bytes.data();
  std::size_t left = bytes.size();
  while (left > 0) {
    const ssize_t put = write(answerFd, at, left);
    if (put <= 0) std::exit(3);
    at += put;
    left -= static_cast<std::size_t>(put);
  }
}

void putU32(std::string& out, std::size_t value) {
  for (int i = 0; i < 4; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

std::uint32_t getU32(const std::string& in, std::size_t at) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i)
    value |= std::uint32_t{static_cast<unsigned char>(in[at + i])} << (8 * i);
  return value;
}

// Text as "s<size>:<bytes>", so that any bytes compare exactly.
void putText(std::string& out, std::string_view text) {
  out += 's' + std::to_string(text.size()) + ':';
  out.append(text);
}

// Numbers as "#<int64>,<double bits in hex>;", each the getter's answer
// (0 and 0.0 when the number does not convert exactly).
void putNumber(std::string& out, std::int64_t integer, double real) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &real, sizeof bits);
  char hex[24];
  std::snprintf(hex, sizeof hex, "%llx", static_cast<unsigned long long>(bits));
  out += '#' + std::to_string(integer) + ',' + hex + ';';
}

void putValue(std::string& out, const tavuro::JsonValue& value);

void putDictionary(std::string& out, const tavuro::JsonDictionary& dictionary) {
  std::vector<std::size_t> order(dictionary.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return dictionary.keyAt(a) < dictionary.keyAt(b);
  });
  const std::optional<tavuro::JsonDictionary> held = dictionary;
  out += '{';
  for (const std::size_t i : order) {
    const std::string key(dictionary.keyAt(i));
    putText(out, key);
    const tavuro::JsonValue value = dictionary.valueAt(i);
    if (value.kind() == tavuro::JsonValue::Kind::Number) {
      putNumber(out, tavuro::Utils::getIntValue(held, key),
                tavuro::Utils::getDoubleValue(held, key));
    } else {
      putValue(out, value);
    }
  }
  out += '}';
}

void putValue(std::string& out, const tavuro::JsonValue& value) {
  using Kind = tavuro::JsonValue::Kind;
  switch (value.kind()) {
    case Kind::Null: out += 'n'; break;
    case Kind::Boolean: out += *value.boolValue() ? 'T' : 'F'; break;
    case Kind::Number:
      putNumber(out, value.int64Value().value_or(0), value.doubleValue().value_or(0.0));
      break;
    case Kind::String: putText(out, *value.stringValue()); break;
    case Kind::Array: {
      const tavuro::JsonArray array = *value.arrayValue();
      out += '[';
      for (std::size_t i = 0; i < array.size(); ++i) putValue(out, array[i]);
      out += ']';
      break;
    }
    case Kind::Object: putDictionary(out, *value.dictionaryValue()); break;
  }
}

// The tree of a JSON text, or "!" and the reader's message. The public
// entry decides about objects; the reader's root shows arrays too.
std::string json(const std::string& text) {
  const std::optional<tavuro::JsonDictionary> dictionary = tavuro::Utils::convertToDictionary(text);
  const tavuro::detail::JsonReadResult read = tavuro::detail::readJson(text);
  if (!read.value) return "!" + read.errorDescription;
  std::string out;
  if (dictionary) {
    putDictionary(out, *dictionary);
  } else {
    putValue(out, *read.value);
  }
  return out;
}

template <typename Bytes>
std::string bytesOrAbsent(const std::optional<Bytes>& bytes) {
  return bytes ? "=" + std::string(bytes->begin(), bytes->end()) : "!";
}

std::string plistAnswer(const std::optional<std::map<std::string, std::string>>& dictionary) {
  if (!dictionary) return "!";
  std::string out;
  for (const auto& [key, value] : *dictionary) {
    putText(out, key);
    putText(out, value);
  }
  return out;
}

std::map<std::string, std::string> plistRequest(const std::string& in) {
  std::map<std::string, std::string> dictionary;
  std::size_t at = 0;
  const auto text = [&] {
    const std::size_t colon = in.find(':', at);
    const std::size_t size = std::stoul(in.substr(at + 1, colon - at - 1));
    at = colon + 1 + size;
    return in.substr(colon + 1, size);
  };
  while (at < in.size()) {
    std::string key = text();
    dictionary[key] = text();
  }
  return dictionary;
}

tavuro::detail::CredentialStore& store() {
  static tavuro::detail::CredentialStore instance({
      [] { return tavuro::Instant{}; },
      [] { return std::optional<std::string>(); },
      [](const std::string&, std::string_view) { return false; },
  });
  return instance;
}

std::string answer(char operation, const std::string& in) {
  static const tavuro::TavuroJwtParser parser;
  switch (operation) {
    case 'J': return json(in);
    case 'B': return bytesOrAbsent(tavuro::platform::base64DecodeLenient(in));
    case 'U': return bytesOrAbsent(parser.base64UrlDecode(in));
    case 'H': {
      const std::uint32_t userSize = getU32(in, 0);
      store().setUsername(in.substr(4, userSize));
      store().setPassword(in.substr(4 + userSize));
      return store().basicAuthHeader().value_or("!");
    }
    case 'P': return plistAnswer(tavuro::platform::readPlistStringDictionary(in));
    case 'W': return tavuro::platform::writeXmlPlist(plistRequest(in));
    case 'D': return tavuro::Utils::dateFieldToDateString(in).value_or("!");
    default: std::exit(2);
  }
}

}  // namespace

int main() {
  // Standard output carries the answers only: the line convertToDictionary
  // prints on a parse error goes nowhere.
  answerFd = dup(1);
  if (answerFd < 0 || std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  std::string header(4, '\0');
  while (readExactly(header.data(), 4)) {
    const std::uint32_t count = getU32(header, 0);
    std::vector<std::pair<char, std::string>> requests(count);
    for (auto& [operation, bytes] : requests) {
      char head[5];
      if (!readExactly(head, 5)) return 1;
      operation = head[0];
      bytes.resize(getU32(std::string(head + 1, 4), 0));
      if (!readExactly(bytes.data(), bytes.size())) return 1;
    }
    std::string out;
    for (const auto& [operation, bytes] : requests) {
      const std::string result = answer(operation, bytes);
      putU32(out, result.size());
      out += result;
    }
    writeAll(out);
  }
  return 0;
}
