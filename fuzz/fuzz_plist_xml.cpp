// Property-list reader on arbitrary bytes (XML seeds). Whatever string
// dictionary is read must survive being written and read back unchanged.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Plist.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using tavuro::platform::readPlistStringDictionary;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto dictionary = readPlistStringDictionary(bytes);
  if (dictionary &&
      readPlistStringDictionary(tavuro::platform::writeXmlPlist(*dictionary)) != dictionary) {
    __builtin_trap();
  }
  return 0;
}
