// The C++ side of plist_oracle.py.
//   read FILE...  one line per file: the string dictionary as JSON, or null
//   write         for each stdin line of comma-separated "hexkey:hexvalue"
//                 entries, the hex of writeXmlPlist's output on one line
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "platform/Plist.h"

namespace {

std::string jsonString(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out += escape;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

std::string fromHex(const std::string& hex) {
  std::string out;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    out += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return out;
}

std::string toHex(const std::string& bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    out += kDigits[c >> 4];
    out += kDigits[c & 0xF];
  }
  return out;
}

void readFiles(int count, char** paths) {
  for (int i = 0; i < count; ++i) {
    std::ifstream in(paths[i], std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const auto dictionary = tavuro::platform::readPlistStringDictionary(bytes);
    if (!dictionary) {
      std::cout << "null\n";
      continue;
    }
    std::string line = "{";
    for (const auto& [key, value] : *dictionary) {
      if (line.size() > 1) line += ",";
      line += jsonString(key) + ":" + jsonString(value);
    }
    std::cout << line << "}\n";
  }
}

void writeLines() {
  std::string line;
  while (std::getline(std::cin, line)) {
    std::map<std::string, std::string> dictionary;
    std::istringstream entries(line);
    std::string entry;
    while (std::getline(entries, entry, ',')) {
      const std::size_t colon = entry.find(':');
      dictionary[fromHex(entry.substr(0, colon))] = fromHex(entry.substr(colon + 1));
    }
    std::cout << toHex(tavuro::platform::writeXmlPlist(dictionary)) << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "read") {
    readFiles(argc - 2, argv + 2);
  } else if (mode == "write") {
    writeLines();
  } else {
    std::cerr << "usage: " << argv[0] << " read FILE... | write\n";
    return 2;
  }
  return 0;
}
