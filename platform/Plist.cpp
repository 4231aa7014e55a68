#include "platform/Plist.h"

#include <new>

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

}  // namespace

std::optional<std::map<std::string, std::string>> readPlistStringDictionary(
    std::string_view bytes) {
  // Any "bplist" prefix is claimed by the binary reader, which accepts only
  // version 00: another version is not XML either.
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
    // std::map orders std::string keys by unsigned byte value, which is the
    // order of their UTF-8 bytes the file must show.
    out += "<dict>\n";
    for (const auto& [key, value] : dictionary) {
      appendElement(out, "key", key);
      appendElement(out, "string", value);
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
