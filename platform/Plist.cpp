#include "platform/Plist.h"

#include <algorithm>
#include <new>
#include <vector>

#include "platform/PlistFormats.h"
#include "platform/Utf8.h"

namespace tavuro::platform {

namespace {

constexpr std::string_view kBinaryMagicPrefix = "bplist";

constexpr std::string_view kXmlHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

void appendEscaped(std::string& out, std::string_view text) {
  for (char c : text) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      default: out += c;
    }
  }
}

void appendElement(std::string& out, std::string_view name, std::string_view text) {
  out += '\t';
  out += '<';
  out += name;
  out += '>';
  appendEscaped(out, text);
  out += "</";
  out += name;
  out += ">\n";
}

// The platform writes keys in the order of their UTF-16 code units. For
// UTF-8 that is byte order, except that characters from U+10000 on (lead
// bytes F0 to F4) come before U+E000 to U+FFFF (lead bytes EE and EF):
// ranking those two lead bytes above every other byte gives it.
unsigned utf16Rank(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte == 0xEE || byte == 0xEF ? byte + 0x10U : byte;
}

bool inUtf16Order(std::string_view a, std::string_view b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return utf16Rank(x) < utf16Rank(y); });
}

}  // namespace

std::optional<std::map<std::string, std::string>> readPlistStringDictionary(
    std::string_view bytes) {
  // Any "bplist" prefix is claimed by the binary reader, which accepts only
  // versions 0x: another version is not XML either.
  if (bytes.size() > kMaxPlistBytes) return std::nullopt;
  try {
    if (bytes.substr(0, kBinaryMagicPrefix.size()) == kBinaryMagicPrefix) {
      return readBinaryPlistStringDictionary(bytes);
    }
    return readXmlPlistStringDictionary(bytes);
  } catch (const std::bad_alloc&) {
    // What is allocated is bounded by the input's size, yet a huge input
    // may still not fit; that must not escape into the caller.
    return std::nullopt;
  }
}

std::string writeXmlPlist(const std::map<std::string, std::string>& dictionary) {
  std::string out(kXmlHeader);
  if (dictionary.empty()) {
    out += "<dict/>\n";
  } else {
    std::vector<const std::pair<const std::string, std::string>*> entries;
    entries.reserve(dictionary.size());
    for (const auto& entry : dictionary) entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(),
              [](const auto* a, const auto* b) { return inUtf16Order(a->first, b->first); });
    out += "<dict>\n";
    for (const auto* entry : entries) {
      appendElement(out, "key", entry->first);
      appendElement(out, "string", entry->second);
    }
    out += "</dict>\n";
  }
  out += "</plist>\n";
  return out;
}

std::optional<std::string> writeFaithfulXmlPlist(
    const std::map<std::string, std::string>& dictionary) {
  // The reader takes text byte for byte and undoes exactly the three
  // escapes, so well-formed UTF-8 is all a faithful file needs.
  for (const auto& [key, value] : dictionary) {
    if (!isValidUtf8(key) || !isValidUtf8(value)) return std::nullopt;
  }
  std::string xml = writeXmlPlist(dictionary);
  if (xml.size() > kMaxPlistBytes) return std::nullopt;
  return xml;
}

}  // namespace tavuro::platform
