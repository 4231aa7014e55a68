// Reads requests from standard input, one a line, and answers each on its
// own line of standard output, for a comparison with another base64:
//   E <hex bytes>  ->  our encoding
//   D <text>       ->  the hex bytes of our lenient decoding, or "absent"
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

#include "platform/Base64.h"

namespace {

std::string fromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

std::string toHex(const std::vector<std::uint8_t>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (std::uint8_t b : bytes) {
    hex.push_back(kDigits[b >> 4]);
    hex.push_back(kDigits[b & 15]);
  }
  return hex;
}

}  // namespace

int main() {
  std::string line;
  while (std::getline(std::cin, line)) {
    const std::string argument = line.size() > 2 ? line.substr(2) : std::string();
    if (line.rfind("E ", 0) == 0 || line == "E") {
      std::cout << tavuro::platform::base64Encode(fromHex(argument)) << '\n';
    } else {
      const auto decoded = tavuro::platform::base64DecodeLenient(argument);
      std::cout << (decoded ? toHex(*decoded) : "absent") << '\n';
    }
  }
  return 0;
}
