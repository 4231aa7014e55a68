// The C++ side of python_oracle.py. Bytes travel as hex, one request a line.
//   base64             stdin "E <hex>" -> our encoding; "D <text>" -> hex of
//                      the lenient decoding, or "absent"
//   plist-read FILE... one line per file: hex key:value pairs, or "absent"
//   plist-write        stdin "hexkey:hexvalue,..." -> hex of the XML written
//   credential DIR [set FIELD HEX|- | endpoints ID MED FRM]...
//                      runs the setters on the store over DIR, then prints
//                      "name hex" or "name -" for every field it holds
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Base64.h"
#include "platform/Plist.h"

namespace {

using Text = std::optional<std::string>;

Text fromHex(const std::string& hex) {
  if (hex == "-") return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

template <typename Bytes>
std::string hex(const Bytes& bytes) {
  std::string out;
  char digits[3];
  for (const auto c : bytes) {
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
    out += digits;
  }
  return out;
}

std::string hex(const Text& text) {
  return text ? hex(*text) : "-";
}

std::string pairs(const std::optional<std::map<std::string, std::string>>& dictionary) {
  if (!dictionary) return "absent";
  std::string line;
  for (const auto& [key, value] : *dictionary) line += hex(key) + ":" + hex(value) + ",";
  return line;
}

int credential(int argc, char** argv) {
  using tavuro::Credential;
  tavuro::setResourceDirectory(argv[0]);
  for (int i = 1; i < argc; ++i) {
    const std::string op = argv[i];
    if (op == "set" && i + 2 < argc) {
      const std::string field = argv[i + 1];
      const Text value = fromHex(argv[i + 2]);
      i += 2;
      if (field == "username") Credential::setUsername(value);
      if (field == "password") Credential::setPassword(value);
      if (field == "subscription") Credential::setSubscription(value);
    } else if (op == "endpoints" && i + 3 < argc) {
      auto endpoints = tavuro::Endpoints::newInstance();
      endpoints->setIdEndpoint(fromHex(argv[++i]));
      endpoints->setHealthInsuranceEndpoint(fromHex(argv[++i]));
      endpoints->setFrmEndpoint(fromHex(argv[++i]));
      Credential::setEndpoints(endpoints);
    } else {
      return 2;
    }
  }
  std::cout << "username " << hex(Credential::username()) << "\npassword "
            << hex(Credential::password()) << "\nsubscription " << hex(Credential::subscription())
            << "\n";
  if (const auto e = Credential::endpoints()) {
    std::cout << "frm " << hex(e->frmEndpoint()) << "\nid " << hex(e->idEndpoint()) << "\nmed "
              << hex(e->healthInsuranceEndpoint()) << "\npassive "
              << hex(e->passiveLivenessEndpoint()) << "\nkelmo " << hex(e->kelmoEndpoint()) << "\n";
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  namespace platform = tavuro::platform;
  const std::string mode = argc > 1 ? argv[1] : "";
  std::string line;
  if (mode == "credential" && argc > 2) return credential(argc - 2, argv + 2);
  if (mode == "plist-read") {
    for (int i = 2; i < argc; ++i) {
      std::ifstream in(argv[i], std::ios::binary);
      const std::string bytes((std::istreambuf_iterator<char>(in)), {});
      std::cout << pairs(platform::readPlistStringDictionary(bytes)) << "\n";
    }
  } else if (mode == "plist-write") {
    while (std::getline(std::cin, line)) {
      std::map<std::string, std::string> dictionary;
      std::istringstream entries(line);
      for (std::string entry; std::getline(entries, entry, ',');) {
        const std::size_t colon = entry.find(':');
        dictionary[*fromHex(entry.substr(0, colon))] = *fromHex(entry.substr(colon + 1));
      }
      std::cout << hex(platform::writeXmlPlist(dictionary)) << "\n";
    }
  } else if (mode == "base64") {
    while (std::getline(std::cin, line)) {
      const std::string argument = line.size() > 2 ? line.substr(2) : std::string();
      if (line[0] == 'E') {
        std::cout << platform::base64Encode(*fromHex(argument)) << "\n";
      } else {
        const auto decoded = platform::base64DecodeLenient(argument);
        std::cout << (decoded ? hex(*decoded) : "absent") << "\n";
      }
    }
  } else {
    std::cerr << "usage: " << argv[0]
              << " base64 | plist-read FILE... | plist-write | credential DIR OP...\n";
    return 2;
  }
  return 0;
}
