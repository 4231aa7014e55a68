// Binary property-list reader on arbitrary bytes: offsets, references,
// counts and sizes all come from the input. Whatever string dictionary is
// read must be bounded by the input's size, however its objects are shared,
// and must survive being written as XML and read back unchanged.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Plist.h"
#include "platform/PlistFormats.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavuro::platform;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto dictionary = readBinaryPlistStringDictionary(bytes);
  if (!dictionary) return 0;
  std::uint64_t held = 0;
  for (const auto& [key, value] : *dictionary) {
    held += kPlistEntryOverhead + key.size() + value.size();
  }
  if (held > kPlistMaxResultRatio * size + kPlistResultAllowance ||
      readPlistStringDictionary(writeXmlPlist(*dictionary)) != dictionary) {
    __builtin_trap();
  }
  return 0;
}
