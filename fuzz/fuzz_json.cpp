// Fuzz target for the JSON reader. Beyond "no crash, no leak", it checks
// that a failure comes with a one-line description and no value; that every
// key of an object finds its own member (tests/json_describe.h marks one that
// does not); and that reading the text again, into the node memory the
// first reading left to the pool, gives the same values.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "common/JsonAccess.h"
#include "platform/Json.h"
#include "tests/json_describe.h"

namespace {

// The values read from `bytes` as one line; empty when `bytes` is no JSON
// text. The document is gone on return, a large one's chunks in the pool.
std::string read(std::string_view bytes) {
  const tavuro::detail::JsonReadResult result = tavuro::detail::readJson(bytes);
  const std::string& error = result.errorDescription;
  if (result.value.has_value() == !error.empty() || error.find('\n') != std::string::npos ||
      (result.value && !result.value->arrayValue() && !result.value->dictionaryValue())) {
    __builtin_trap();
  }
  return result.value ? tavuro::test::describe(*result.value) : std::string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string first = read(bytes);
  if (first.find('\xFF') != std::string::npos || read(bytes) != first) __builtin_trap();
  // Each input starts with an empty pool, so that a failure replays alone.
  tavuro::platform::releaseJsonMemory();
  return 0;
}
