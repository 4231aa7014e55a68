// Binary property-list reader on arbitrary bytes: offsets, references,
// counts and sizes all come from the input. Whatever string dictionary is
// read must survive being written as XML and read back unchanged.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Plist.h"
#include "platform/PlistFormats.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavuro::platform;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto dictionary = readBinaryPlistStringDictionary(bytes);
  if (dictionary && readPlistStringDictionary(writeXmlPlist(*dictionary)) != dictionary) {
    __builtin_trap();
  }
  return 0;
}
