// The C++ side of python_oracle.py. Bytes travel as hex, one request a line.
//   base64             stdin "E <hex>" -> our encoding; "D <text>" -> hex of
//                      the lenient decoding, or "absent"
//   plist-read FILE... one line per file: "hexkey:hexvalue," pairs, or "absent"
//   plist-write        stdin "hexkey:hexvalue,..." -> hex of the XML written
//   credential DIR [set FIELD HEX|- | endpoints ID MED FRM]...
//                      runs the setters on the store over DIR, then prints
//                      "name hex" or "name -" for every field it holds
#include <cstdio>
#include <cstdlib>
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

void credential(int argc, char** argv) {
  using tavuro::Credential;
  tavuro::setResourceDirectory(argv[0]);
  for (int i = 1; i < argc;) {
    const std::string op = argv[i];
    if (op == "endpoints" && i + 3 < argc) {
      auto endpoints = tavuro::Endpoints::newInstance();
      endpoints->setIdEndpoint(fromHex(argv[i + 1]));
      endpoints->setHealthInsuranceEndpoint(fromHex(argv[i + 2]));
      endpoints->setFrmEndpoint(fromHex(argv[i + 3]));
      Credential::setEndpoints(endpoints);
      i += 4;
    } else if (op == "set" && i + 2 < argc) {
      const std::string field = argv[i + 1];
      const Text value = fromHex(argv[i + 2]);
      if (field == "username") Credential::setUsername(value);
      if (field == "password") Credential::setPassword(value);
      if (field == "subscription") Credential::setSubscription(value);
      i += 3;
    } else {
      std::exit(2);
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
}

}  // namespace

int main(int argc, char** argv) {
  namespace platform = tavuro::platform;
  const std::string mode = argc > 1 ? argv[1] : "";
  std::string line;
  if (mode == "credential" && argc > 2) credential(argc - 2, argv + 2);
  for (int i = 2; mode == "plist-read" && i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    const auto dictionary =
        platform::readPlistStringDictionary(std::string(std::istreambuf_iterator<char>(in), {}));
    for (const auto& [key, value] : dictionary.value_or(std::map<std::string, std::string>())) {
      std::cout << hex(key) << ":" << hex(value) << ",";
    }
    std::cout << (dictionary ? "\n" : "absent\n");
  }
  while (mode == "plist-write" && std::getline(std::cin, line)) {
    std::map<std::string, std::string> dictionary;
    std::istringstream entries(line);
    for (std::string entry; std::getline(entries, entry, ',');) {
      const std::size_t colon = entry.find(':');
      dictionary[*fromHex(entry.substr(0, colon))] = *fromHex(entry.substr(colon + 1));
    }
    std::cout << hex(platform::writeXmlPlist(dictionary)) << "\n";
  }
  while (mode == "base64" && std::getline(std::cin, line)) {
    const std::string argument = line.size() > 2 ? line.substr(2) : "";
    const auto decoded = platform::base64DecodeLenient(argument);
    std::cout << (line[0] == 'E' ? platform::base64Encode(*fromHex(argument))
                  : decoded      ? hex(*decoded)
                                 : "absent")
              << "\n";
  }
  return 0;
}
