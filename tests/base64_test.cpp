#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Base64.h"

namespace {

using tavuro::platform::base64DecodeLenient;
using tavuro::platform::base64Encode;

TEST(Base64, EncodesTheStandardTestVectors) {
  const struct {
    std::string bytes;
    const char* text;
  } cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"user:pass", "dXNlcjpwYXNz"},
      {std::string("\xfb\xff\xbf", 3), "+/+/"},
      {std::string("\0\0\0\0", 4), "AAAAAA=="},
  };
  for (const auto& c : cases) EXPECT_EQ(base64Encode(c.bytes), c.text) << c.text;
}

TEST(Base64, DecodesLeniently) {
  const std::nullopt_t kAbsent = std::nullopt;
  const struct {
    const char* text;
    std::optional<std::string> bytes;
  } cases[] = {
      {"", ""},
      {"Zm9vYmFy", "foobar"},
      {"Zm9vYg==", "foob"},
      {"Zm9vYg", "foob"},  // padding is optional
      {"Zm9vYmE", "fooba"},
      {"AAAA=", std::string(3, '\0')},
      {"AA===", std::string(1, '\0')},
      {"AAAAA", kAbsent},
      {"A===", kAbsent},
      {"A", kAbsent},
      {"AA==AAAA", std::string(1, '\0')},  // nothing after the first "=" counts
      {"=Zm9v", ""},
      {"Zm9=", "fo"},
      {"Zh==", "f"},          // leftover bits of the last character are ignored
      {"Z m\n9\tv!", "foo"},  // characters outside the alphabet are skipped
      {"Zm9v\xc3\xa9YmFy", "foobar"},
      {"-_-_", ""},  // base64url's characters are not in this alphabet
      {"Zm-9_v", "foo"},
      {"Z-", kAbsent},
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
    const std::string noisy = text.substr(0, at) + "\r\n" + text.substr(at);
    const auto decoded = base64DecodeLenient(noisy);
    ASSERT_TRUE(decoded) << at;
    EXPECT_EQ(std::string(decoded->begin(), decoded->end()), bytes) << at;
  }
}

}  // namespace
