// Token texts from the outside world: decoding must never crash, and a
// parsed token must carry the text unchanged and the payload's "exp".
#include <cstddef>
#include <cstdint>
#include <string>

#include "TavuroCommon/TavuroCommon.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const tavuro::TavuroJwtParser parser;
  (void)parser.base64UrlDecode(text);
  (void)parser.decodeJWTPart(text);
  // A token without "." ends the process by design; that is not a finding.
  if (text.find('.') == std::string::npos) return 0;

  const tavuro::JsonDictionary claims = parser.decode(text);
  // decode reads the second segment exactly as decodeJWTPart does.
  const std::size_t first = text.find('.');
  const auto part =
      parser.decodeJWTPart(text.substr(first + 1, text.find('.', first + 1) - first - 1));
  if (claims.size() != (part ? part->size() : 0)) __builtin_trap();
  const auto token = parser.parseToken(text);
  if (!token) return 0;
  const auto exp = claims.find("exp");
  if (token->value() != text || !exp || !exp->int64Value() ||
      token->expiration().time_since_epoch().count() != static_cast<double>(*exp->int64Value())) {
    __builtin_trap();
  }
  return 0;
}
