#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "credential_test_support.h"
#include "platform/Base64.h"

namespace {

using tavuro::Instant;
using tavuro::TavuroJwtParser;
using tavuro::TavuroJwtToken;

// base64url without padding, as token segments are written.
std::string segment(const std::string& json) {
  std::string text = tavuro::platform::base64Encode(json);
  while (!text.empty() && text.back() == '=') text.pop_back();
  for (char& c : text) c = c == '+' ? '-' : c == '/' ? '_' : c;
  return text;
}

std::string token(const std::string& payloadJson) {
  return segment(R"({"alg":"HS256"})") + "." + segment(payloadJson) + ".c2ln";
}

Instant at(double seconds) { return Instant(std::chrono::duration<double>(seconds)); }

TEST(TavuroJwtParser, Base64UrlDecodePadsAndMapsTheAlphabet) {
  const struct {
    const char* text;
    std::optional<std::string> bytes;
  } cases[] = {
      {"eyJhIjoxfQ", R"({"a":1})"},                 // 4k+2: two "=" appended
      {"YWJj", "abc"},                                // 4k: none
      {"YWI", "ab"},                                  // 4k+3: one
      {"YWJjZ", std::nullopt},                        // 4k+1: three, a lone last character
      {"-_-_", std::string("\xfb\xff\xbf")},          // "-" and "_" are "+" and "/"
      {"Y W!I", "ab"},                                // characters outside it are skipped
  };
  const TavuroJwtParser parser;
  for (const auto& c : cases) {
    const auto bytes = parser.base64UrlDecode(c.text);
    ASSERT_EQ(bytes.has_value(), c.bytes.has_value()) << c.text;
    if (bytes) {
      EXPECT_EQ(std::string(bytes->begin(), bytes->end()), *c.bytes) << c.text;
    }
  }
}

TEST(TavuroJwtParser, DecodeReadsOnlyTheSecondSegmentAsAnObject) {
  const std::string a = segment(R"({"from":"a"})");
  const std::string b = segment(R"({"from":"b"})");
  const struct {
    std::string token;
    std::optional<std::string> from;  // nullopt: an empty dictionary
  } cases[] = {
      {a + "." + b + "." + a + "." + a, "b"},
      {"." + b, "b"},
      {a + ".." + b, std::nullopt},
      {"x.", std::nullopt},
      {"header.e30.sig", std::nullopt},
      {"header.!!!!.sig", std::nullopt},
      {token("[1,2]"), std::nullopt},
      {token("1"), std::nullopt},
      {token(R"({"from":)"), std::nullopt},
  };
  const TavuroJwtParser parser;
  for (const auto& c : cases) {
    const tavuro::JsonDictionary claims = parser.decode(c.token);
    if (!c.from) {
      EXPECT_TRUE(claims.empty()) << c.token;
      continue;
    }
    ASSERT_EQ(claims.size(), 1u) << c.token;
    EXPECT_EQ(claims.find("from")->stringValue(), *c.from);
  }
  EXPECT_TRUE(parser.decodeJWTPart(segment(R"({"k":true})")).has_value());
  EXPECT_FALSE(parser.decodeJWTPart(segment("[1]")).has_value());
  EXPECT_FALSE(parser.decodeJWTPart("A").has_value());
}

TEST(TavuroJwtParser, ParseTokenTakesOnlyAWholeInt64Exp) {
  const struct {
    const char* payload;
    std::optional<double> expiration;
  } cases[] = {
      {R"({"exp":1700000000})", 1700000000.0},
      {R"({"exp":1700000000.0})", 1700000000.0},
      {R"({"exp":17e8})", 1700000000.0},
      {R"({"exp":-1})", -1.0},
      {R"({"exp":9223372036854775807})", 9223372036854775807.0},
      {R"({"exp":-9223372036854775808})", -9223372036854775808.0},
      {R"({"exp":9223372036854775808})", std::nullopt},
      {R"({"exp":1e19})", std::nullopt},
      {R"({"exp":1700000000.5})", std::nullopt},
      {R"({"exp":"1700000000"})", std::nullopt},
      {R"({"exp":true})", std::nullopt},
      {R"({"exp":null})", std::nullopt},
      {R"({"exp":[1]})", std::nullopt},
      {R"({"EXP":1})", std::nullopt},
      {R"({"iat":1})", std::nullopt},
  };
  const TavuroJwtParser parser;
  for (const auto& c : cases) {
    const std::string text = token(c.payload);
    const auto parsed = parser.parseToken(text);
    ASSERT_EQ(parsed != nullptr, c.expiration.has_value()) << c.payload;
    if (!parsed) continue;
    EXPECT_EQ(parsed->value(), text);
    EXPECT_EQ(parsed->expiration(), at(*c.expiration)) << c.payload;
  }
}

TEST(TavuroJwtToken, IsInvalidFromTheInstantOfExpiry) {
  tavuro::test::FixedClock clock(1700000000.0);
  const TavuroJwtToken token("", at(1700000000.0));
  EXPECT_FALSE(token.isValid());
  clock.set(1699999999.999);
  EXPECT_TRUE(token.isValid());
  clock.set(1700000000.001);
  EXPECT_FALSE(token.isValid());
  // A parsed token in the past still yields a record, which is invalid.
  const auto past = TavuroJwtParser().parseToken(token.value() + "." + segment(R"({"exp":1})"));
  ASSERT_NE(past, nullptr);
  EXPECT_FALSE(past->isValid());
}

TEST(TavuroJwtParserDeathTest, TokenWithoutDotEndsTheProcess) {
  const TavuroJwtParser parser;
  EXPECT_DEATH(parser.decode("abc"), "no \"\\.\"");
  EXPECT_DEATH(parser.decode(""), "no \"\\.\"");
  EXPECT_DEATH(parser.parseToken(segment(R"({"exp":1})")), "no \"\\.\"");
}

}  // namespace
