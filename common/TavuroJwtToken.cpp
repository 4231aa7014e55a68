#include "TavuroCommon/TavuroCommon.h"
#include "platform/Clock.h"

namespace tavuro {

TavuroJwtToken::TavuroJwtToken(std::string value, Instant expiration)
    : value_(std::move(value)), expiration_(expiration) {}

TavuroJwtToken::~TavuroJwtToken() = default;

bool TavuroJwtToken::isValid() const {
  return isValidAt(platform::wallClockNow());
}

bool TavuroJwtToken::isValidAt(Instant now) const noexcept {
  // Strict and without margin: the token is already unusable at the very
  // instant of its expiry.
  return now < expiration_;
}

}  // namespace tavuro
