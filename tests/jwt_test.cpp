#include <csignal>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/Base64.h"

namespace {

using tavuro::TavuroJwtParser;

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

const auto at = [](double s) { return tavuro::Instant(std::chrono::duration<double>(s)); };

TEST(TavuroJwtParser, Base64UrlDecodeMapsTheAlphabetAndSkipsStrangers) {
  // "-" and "_" are "+" and "/"; a lone last character decodes to nothing.
  const std::pair<const char*, std::optional<std::string>> cases[] = {
      {"eyJhIjoxfQ", R"({"a":1})"}, {"-_-_", "\xfb\xff\xbf"}, {"Y W!I", "ab"}, {"YWJjZ", {}}};
  for (const auto& [text, expected] : cases) {
    const auto bytes = TavuroJwtParser().base64UrlDecode(text);
    EXPECT_EQ(bytes ? std::optional<std::string>(std::string(bytes->begin(), bytes->end()))
                    : std::nullopt,
              expected)
        << text;
  }
}

// Which segment decode reads is the token fuzz target's check (its corpus
// holds empty and surplus segments); here, that only an object counts.
TEST(TavuroJwtParser, DecodeTakesOnlyAnObject) {
  const TavuroJwtParser parser;
  EXPECT_EQ(parser.decode(token(R"({"k":true})")).size(), 1U);
  EXPECT_EQ(parser.decode(token("[1,2]")).size(), 0U);
  EXPECT_TRUE(parser.decodeJWTPart(segment(R"({"k":true})")).has_value());
  EXPECT_FALSE(parser.decodeJWTPart(segment("[1]")).has_value());
}

TEST(TavuroJwtParser, ParseTokenTakesOnlyAWholeInt64Exp) {
  const std::pair<const char*, std::optional<double>> cases[] = {
      {R"({"exp":1700000000})", 1700000000.0},
      {R"({"exp":1700000000.0})", 1700000000.0},
      {R"({"exp":-1})", -1.0},  // in the past, still a record
      {R"({"exp":9223372036854775807})", 9223372036854775807.0},
      {R"({"exp":-9223372036854775808})", -9223372036854775808.0},
      {R"({"exp":9223372036854775808})", std::nullopt},
      {R"({"exp":9223372036854775807.0})", std::nullopt},  // the double 2^63
      {R"({"exp":1700000000.5})", std::nullopt},
      {R"({"exp":"1700000000"})", std::nullopt},
      {R"({"exp":true})", std::nullopt},
      {R"({"EXP":1})", std::nullopt},
  };
  for (const auto& [payload, expiration] : cases) {
    const std::string text = token(payload);
    const auto parsed = TavuroJwtParser().parseToken(text);
    EXPECT_EQ(parsed ? std::optional(parsed->expiration()) : std::nullopt,
              expiration ? std::optional(at(*expiration)) : std::nullopt)
        << payload;
    EXPECT_EQ(parsed ? parsed->value() : text, text);
  }
}

TEST(TavuroJwtToken, IsInvalidFromTheInstantOfExpiry) {
  const tavuro::TavuroJwtToken token("", at(1700000000.0));
  EXPECT_FALSE(token.isValidAt(at(1700000000.0)));
  EXPECT_TRUE(token.isValidAt(at(1699999999.999)));
  EXPECT_FALSE(token.isValidAt(at(1700000000.001)));
  EXPECT_FALSE(token.isValid());  // the system clock is long past 2023
}

TEST(TavuroJwtParserDeathTest, TokenWithoutDotEndsTheProcess) {
  const TavuroJwtParser parser;
  EXPECT_EXIT((void)parser.decode("abc"), testing::KilledBySignal(SIGABRT), "no \"\\.\"");
  EXPECT_EXIT((void)parser.decode(""), testing::KilledBySignal(SIGABRT), "no \"\\.\"");
  EXPECT_EXIT((void)parser.parseToken(segment(R"({"exp":1})")), testing::KilledBySignal(SIGABRT),
              "no \"\\.\"");
}

}  // namespace
