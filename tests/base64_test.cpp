#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/Base64.h"

namespace {

using tavuro::platform::base64DecodeLenient;
using tavuro::platform::base64Encode;

TEST(Base64, EncodesWithPadding) {
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"\xfb\xff\xbf", "+/+/"},
  };
  for (const auto& [bytes, text] : cases) EXPECT_EQ(base64Encode(bytes), text) << text;
}

TEST(Base64, DecodesLeniently) {
  const struct {
    const char* text;
    std::optional<std::string> bytes;
  } cases[] = {
      {"", ""},
      {"Zm9vYmE=", "fooba"},
      {"Zm9vYmE", std::nullopt},  // a last group of two or three needs its padding
      {"AA=", std::nullopt},
      {"AA=!=AAAA", std::string(1, '\0')},  // skipped characters may split it
      {"AAAA=A", std::nullopt},             // no data after whole groups' "="
      {"==", std::nullopt},
      {"_", std::nullopt},  // neither data nor "=": the length must divide by four
      {"____", ""},
      {"AAAA=", std::string(3, '\0')},
      {"AA===", std::string(1, '\0')},
      {"AAAAA", std::nullopt},
      {"A===", std::nullopt},
      {"AA==AAAA", std::string(1, '\0')},  // nothing after the first "=" counts
      {"Zh==", "f"},                       // leftover bits of the last character are ignored
      {"Z m\n9\tv!\xc3\xa9-_", "foo"},     // base64url's "-" and "_" are skipped too
      {"+/+/", "\xfb\xff\xbf"},
  };
  for (const auto& c : cases) {
    const auto decoded = base64DecodeLenient(c.text);
    ASSERT_EQ(decoded.has_value(), c.bytes.has_value()) << c.text;
    if (decoded) {
      EXPECT_EQ(std::string(decoded->begin(), decoded->end()), *c.bytes) << c.text;
    }
  }
}

TEST(Base64, DecodesLongTextWithSkippedCharactersAnywhere) {
  // Long enough for the group-at-a-time path, with a skipped character at
  // every offset so that groups straddle it.
  std::string bytes;
  for (int i = 0; i < 300; ++i) bytes.push_back(static_cast<char>(i * 37));
  const std::string text = base64Encode(bytes);
  for (std::size_t at = 0; at <= text.size(); ++at) {
    const auto decoded = base64DecodeLenient(text.substr(0, at) + "\r\n" + text.substr(at));
    ASSERT_TRUE(decoded) << at;
    EXPECT_EQ(std::string(decoded->begin(), decoded->end()), bytes) << at;
  }
}

}  // namespace
