#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "TavuroCommon/TavuroCommon.h"
#include "common/JsonAccess.h"
#include "platform/Base64.h"

namespace tavuro {
namespace {

std::optional<JsonDictionary> objectFromJson(const std::vector<std::uint8_t>& bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  const std::optional<JsonValue> value = detail::readJson(text).value;
  if (!value) return std::nullopt;
  return value->dictionaryValue();
}

// The second "."-separated segment, or nothing when the token has no ".".
std::optional<std::string> payloadSegment(const std::string& token) {
  const auto first = token.find('.');
  if (first == std::string::npos) return std::nullopt;
  const auto second = token.find('.', first + 1);
  const auto end = second == std::string::npos ? token.size() : second;
  return token.substr(first + 1, end - first - 1);
}

[[noreturn]] void stopOnTokenWithoutSeparator() {
  std::fputs("TavuroJwtParser: the token has no \".\" and so no payload segment\n", stderr);
  std::abort();
}

}  // namespace

TavuroJwtParser::~TavuroJwtParser() = default;

std::shared_ptr<TavuroJwtToken> TavuroJwtParser::parseToken(const std::string& jwtToken) const {
  const JsonDictionary claims = decode(jwtToken);
  const std::optional<JsonValue> exp = claims.find("exp");
  // Only numbers convert: our JSON keeps booleans and strings apart from
  // numbers, so true, false and "1700000000" have no usable expiry.
  if (!exp || exp->kind() != JsonValue::Kind::Number) return nullptr;
  const std::optional<std::int64_t> seconds = exp->int64Value();
  if (!seconds) return nullptr;
  const Instant expiration{std::chrono::duration<double>(static_cast<double>(*seconds))};
  return std::make_shared<TavuroJwtToken>(jwtToken, expiration);
}

JsonDictionary TavuroJwtParser::decode(const std::string& jwtToken) const {
  const std::optional<std::string> payload = payloadSegment(jwtToken);
  // A deliberate, unchecked precondition: callers make sure of the ".".
  if (!payload) stopOnTokenWithoutSeparator();
  // The same steps as decodeJWTPart, but not through it: an override of
  // that member does not change how a whole token decodes.
  return objectFromSegment(*payload).value_or(JsonDictionary());
}

std::optional<std::vector<std::uint8_t>> TavuroJwtParser::base64UrlDecode(
    const std::string& text) const {
  std::string base64 = text;
  for (char& c : base64) {
    if (c == '-') c = '+';
  }
  for (char& c : base64) {
    if (c == '_') c = '/';
  }
  // Counted over every byte, including those the lenient decoder skips, so
  // a text with stray characters may end up over- or under-padded; that is
  // the decoder's business.
  const auto n = static_cast<double>(base64.size());
  const double padding = std::ceil(n * 0.25) * 4.0 - n;
  if (padding > 0) base64.append(static_cast<std::size_t>(padding), '=');
  return platform::base64DecodeLenient(base64);
}

std::optional<JsonDictionary> TavuroJwtParser::decodeJWTPart(const std::string& segment) const {
  return objectFromSegment(segment);
}

std::optional<JsonDictionary> TavuroJwtParser::objectFromSegment(const std::string& segment) const {
  const auto bytes = base64UrlDecode(segment);
  if (!bytes) return std::nullopt;
  return objectFromJson(*bytes);
}

}  // namespace tavuro
