// Drives the credential store for credential_oracle.py: names the resource
// directory, runs the setters given on the command line, then prints what
// the store holds, one field per line as "name HEX" or "name -" (absent).
//
//   credential_oracle_driver DIR [set FIELD HEX | clear FIELD |
//                                 endpoints ID MED FRM]...
// FIELD is username, password or subscription; ID, MED and FRM are HEX or -.
#include <cstdio>
#include <cstring>
#include <string>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using Text = std::optional<std::string>;

Text fromHex(const char* hex) {
  if (std::strcmp(hex, "-") == 0) return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; hex[i] != '\0' && hex[i + 1] != '\0'; i += 2) {
    bytes += static_cast<char>(std::stoi(std::string(hex + i, 2), nullptr, 16));
  }
  return bytes;
}

void print(const char* name, const Text& text) {
  std::printf("%s ", name);
  if (!text) std::printf("-");
  for (const char c : text.value_or("")) std::printf("%02x", static_cast<unsigned char>(c));
  std::printf("\n");
}

bool setField(const std::string& field, const Text& value) {
  if (field == "username") tavuro::Credential::setUsername(value);
  if (field == "password") tavuro::Credential::setPassword(value);
  if (field == "subscription") tavuro::Credential::setSubscription(value);
  return field == "username" || field == "password" || field == "subscription";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  tavuro::setResourceDirectory(argv[1]);
  for (int i = 2; i < argc; ++i) {
    const std::string op = argv[i];
    bool ok = false;
    if (op == "set" && i + 2 < argc) {
      ok = setField(argv[i + 1], fromHex(argv[i + 2]));
      i += 2;
    } else if (op == "clear" && i + 1 < argc) {
      ok = setField(argv[++i], std::nullopt);
    } else if (op == "endpoints" && i + 3 < argc) {
      auto endpoints = tavuro::Endpoints::newInstance();
      endpoints->setIdEndpoint(fromHex(argv[i + 1]));
      endpoints->setHealthInsuranceEndpoint(fromHex(argv[i + 2]));
      endpoints->setFrmEndpoint(fromHex(argv[i + 3]));
      tavuro::Credential::setEndpoints(endpoints);
      ok = true;
      i += 3;
    }
    if (!ok) return 2;
  }
  print("username", tavuro::Credential::username());
  print("password", tavuro::Credential::password());
  print("subscription", tavuro::Credential::subscription());
  const auto endpoints = tavuro::Credential::endpoints();
  std::printf("endpoints %s\n", endpoints ? "present" : "-");
  if (endpoints) {
    print("frm", endpoints->frmEndpoint());
    print("id", endpoints->idEndpoint());
    print("med", endpoints->healthInsuranceEndpoint());
    print("passive", endpoints->passiveLivenessEndpoint());
    print("kelmo", endpoints->kelmoEndpoint());
  }
  return 0;
}
