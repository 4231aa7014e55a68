#include <sys/stat.h>

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialFile.h"
#include "credential_test_support.h"
#include "platform/Base64.h"

namespace {

using tavuro::Credential;
using tavuro::test::plistXml;
using tavuro::test::readBack;
using tavuro::test::TempDir;
using Dict = std::map<std::string, std::string>;
using Text = std::optional<std::string>;

const Dict kFullFile{
    {"tavuro_username", "<string>user</string>"},
    {"tavuro_password", "<string>pass</string>"},
    {"tavuro_subscription", "<string>sub</string>"},
    {"frm_endpoint", "<string>https://frm.example.com/</string>"},
    {"ferisant_endpoint", "<string>https://id.example.com/</string>"},
    {"med_endpoint", "<string>https://med.example.com/</string>"},
    {"passive_liveness_endpoint", "<string>https://live.example.com/</string>"},
    {"kelmo_endpoint", "<string>https://kelmo.example.com/</string>"},
    {"unknown_key", "<string>kept only in memory</string>"},
};

TEST(CredentialFile, LoadingTakesOnlyTextValues) {
  const struct {
    const char* name;
    std::string bytes;  // empty: no file at all
    bool read;
    Text username, password, kelmo;
  } cases[] = {
      {"no file", "", false, {}, {}, {}},
      {"malformed", "<plist><dict><key>a</key>", false, {}, {}, {}},
      {"array root", "<plist><array/></plist>", false, {}, {}, {}},
      {"empty dict", plistXml({}), true, {}, {}, TAVURO_KELMO_DEFAULT_ENDPOINT},
      {"texts", plistXml(kFullFile), true, "user", "pass", "https://kelmo.example.com/"},
      {"non-texts", plistXml({{"tavuro_username", "<integer>7</integer>"},
                              {"tavuro_password", "<string/>"},
                              {"kelmo_endpoint", "<integer>1</integer>"}}),
       true, {}, "", TAVURO_KELMO_DEFAULT_ENDPOINT},
      {"empty kelmo", plistXml({{"kelmo_endpoint", "<string></string>"}}), true, {}, {}, ""},
  };
  for (const auto& c : cases) {
    TempDir dir;
    if (!c.bytes.empty()) dir.write("TavuroConfig.plist", c.bytes);
    const auto fields = tavuro::detail::loadCredentialFile(dir.config());
    ASSERT_EQ(fields.endpoints != nullptr, c.read) << c.name;
    EXPECT_EQ(fields.username, c.username) << c.name;
    EXPECT_EQ(fields.password, c.password) << c.name;
    if (c.read) {
      EXPECT_EQ(fields.endpoints->kelmoEndpoint(), c.kelmo) << c.name;
    }
  }
}

TEST(Credential, WithoutAConfigurationFileStaysEmptyAndWritesNothing) {
  TempDir dir;
  // A directory in the file's place is no resource either.
  std::filesystem::create_directory(dir.config());
  tavuro::setResourceDirectory(dir.path());
  EXPECT_EQ(Credential::username(), std::nullopt);
  EXPECT_EQ(Credential::endpoints(), nullptr);
  Credential::setUsername("user");
  Credential::setEndpoints(tavuro::Endpoints::newInstance());
  EXPECT_EQ(Credential::username(), "user");
  EXPECT_TRUE(std::filesystem::is_empty(dir.config()));
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

TEST(Credential, EverySaveWritesOnlyTheSavedKeys) {
  TempDir dir;
  dir.write("TavuroConfig.plist", plistXml(kFullFile));
  ::chmod(dir.config().c_str(), 0640);
  tavuro::setResourceDirectory(dir.path());
  const auto endpoints = Credential::endpoints();
  ASSERT_NE(endpoints, nullptr);
  EXPECT_EQ(endpoints->passiveLivenessEndpoint(), "https://live.example.com/");
  EXPECT_EQ(Credential::subscription(), "sub");

  Dict expected{{"tavuro_password", "pass"},
                {"tavuro_subscription", "sub"},
                {"frm_endpoint", "https://frm.example.com/"},
                {"ferisant_endpoint", "https://id.example.com/"},
                {"med_endpoint", "https://med.example.com/"}};
  Credential::setUsername(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);

  // A change on the shared record reaches the file only with the next save.
  endpoints->setFrmEndpoint("https://frm2.example.com/");
  endpoints->setIdEndpoint(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);
  Credential::setSubscription(Credential::subscription());  // saves even without a change
  expected["frm_endpoint"] = "https://frm2.example.com/";
  expected.erase("ferisant_endpoint");
  EXPECT_EQ(readBack(dir.config()), expected);

  Credential::setPassword("");
  const auto empty = tavuro::Endpoints::newInstance();
  Credential::setEndpoints(empty);
  EXPECT_EQ(Credential::endpoints(), empty);
  EXPECT_EQ(readBack(dir.config()), (Dict{{"tavuro_password", ""}, {"tavuro_subscription", "sub"}}));

  // Memory keeps what the file lost; the file keeps its permission bits.
  EXPECT_EQ(endpoints->passiveLivenessEndpoint(), "https://live.example.com/");
  struct stat info {};
  ASSERT_EQ(::stat(dir.config().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

std::string tokenExpiringAt(long long seconds) {
  const std::string payload = "{\"exp\":" + std::to_string(seconds) + "}";
  return "eyJhbGciOiJIUzI1NiJ9." + tavuro::platform::base64Encode(payload) + ".sig";
}

TEST(Credential, TokenSlotChangesOnlyOnSuccessOrRemoval) {
  TempDir dir;
  tavuro::setResourceDirectory(dir.path());
  tavuro::test::FixedClock clock(1000.0);
  Credential::setUsername("user");
  Credential::setPassword("pass");
  EXPECT_FALSE(Credential::removeToken());
  EXPECT_EQ(Credential::getTavuroAuthHeader(), "Basic dXNlcjpwYXNz");

  const std::string first = tokenExpiringAt(2000);
  EXPECT_TRUE(Credential::setToken(first));
  for (const std::string& rejected : {tokenExpiringAt(1000), std::string("a.b.c"), std::string(".")}) {
    EXPECT_FALSE(Credential::setToken(rejected)) << rejected;
  }
  clock.set(5000.0);  // the stored token has expired but stays in use
  EXPECT_EQ(Credential::getToken()->value(), first);
  EXPECT_EQ(Credential::getTavuroAuthHeader(), "Bearer " + first);
  EXPECT_FALSE(Credential::setToken(tokenExpiringAt(4000)));
  EXPECT_EQ(Credential::getToken()->value(), first);

  const std::string second = tokenExpiringAt(6000);
  EXPECT_TRUE(Credential::setToken(second));
  EXPECT_EQ(Credential::getTavuroAuthHeader(), "Bearer " + second);
  EXPECT_TRUE(Credential::removeToken());
  EXPECT_FALSE(Credential::removeToken());
  EXPECT_EQ(Credential::getToken(), nullptr);
  EXPECT_EQ(Credential::getTavuroAuthHeader(), "Basic dXNlcjpwYXNz");
  EXPECT_TRUE(dir.entries().empty());
}

TEST(Credential, BasicHeaderNeedsUserNameAndPassword) {
  const struct {
    Text username, password, header;
  } cases[] = {
      {"user", "pass", "Basic dXNlcjpwYXNz"}, {"", "", "Basic Og=="},
      {"a:b", "\xc3\xbc", "Basic YTpiOsO8"},  {"user", {}, {}},
      {{}, "pass", {}},                       {{}, {}, {}},
  };
  TempDir dir;
  tavuro::setResourceDirectory(dir.path());
  for (const auto& c : cases) {
    Credential::setUsername(c.username);
    Credential::setPassword(c.password);
    EXPECT_EQ(Credential::getBasicAuthHeader(), c.header);
    EXPECT_EQ(Credential::getTavuroAuthHeader(), c.header);
  }
}

TEST(Credential, ValidityChecksEndpointThenCredentialsThenToken) {
  TempDir dir;
  tavuro::setResourceDirectory(dir.path());
  tavuro::test::FixedClock clock(1000.0);
  const struct {
    Text endpoint, username, password, subscription;
    bool token, valid;
  } cases[] = {
      {{}, "u", "p", "s", true, false},   {"", "u", "p", "s", true, false},
      {"e", "u", "p", "s", false, true},  {"e", "u", "p", {}, false, false},
      {"e", "u", "", "s", false, false},  {"e", {}, {}, {}, true, true},
      {"e", "u", "p", "", true, true},
  };
  for (const auto& c : cases) {
    Credential::setUsername(c.username);
    Credential::setPassword(c.password);
    Credential::setSubscription(c.subscription);
    Credential::removeToken();
    if (c.token) {
      ASSERT_TRUE(Credential::setToken(tokenExpiringAt(2000)));
    }
    clock.set(3000.0);  // expiry is not looked at
    EXPECT_EQ(Credential::isCredentialValid(c.endpoint), c.valid);
    clock.set(1000.0);
  }
}

TEST(Credential, ConcurrentFirstUseLoadsOnce) {
  TempDir dir;
  dir.write("TavuroConfig.plist", plistXml(kFullFile));
  tavuro::setResourceDirectory(dir.path());
  std::atomic<bool> go{false};
  std::vector<std::shared_ptr<tavuro::Endpoints>> seen(8);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < seen.size(); ++i) {
    threads.emplace_back([&, i] {
      while (!go.load()) std::this_thread::yield();
      if (Credential::username() == "user") seen[i] = Credential::endpoints();
    });
  }
  go = true;
  for (auto& t : threads) t.join();
  EXPECT_EQ(tavuro::detail::credentialLoadCount(), 1u);
  for (const auto& e : seen) EXPECT_TRUE(e != nullptr && e == seen[0]);
}

}  // namespace
