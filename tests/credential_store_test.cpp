#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialFile.h"
#include "credential_test_support.h"
#include "platform/Base64.h"
#include "platform/FileSystem.h"
#include "platform/Plist.h"

namespace {

using tavuro::Credential;
using tavuro::test::plistXml;
using tavuro::test::TempDir;
using Dict = std::map<std::string, std::string>;
using Text = std::optional<std::string>;

const Dict kFullFile{
    {"tavuro_username", "<string>user</string>"}, {"tavuro_password", "<string>pass</string>"},
    {"tavuro_subscription", "<string>sub</string>"}, {"frm_endpoint", "<string>frm</string>"},
    {"ferisant_endpoint", "<string>id</string>"},    {"med_endpoint", "<string>med</string>"},
    {"passive_liveness_endpoint", "<string>live</string>"},
    {"kelmo_endpoint", "<string>kelmo</string>"},    {"unknown_key", "<string>x</string>"},
};

std::optional<Dict> readBack(const std::string& path) {
  const auto bytes = tavuro::platform::readWholeFile(path);
  return bytes ? tavuro::platform::readPlistStringDictionary(*bytes) : std::nullopt;
}

std::string tokenExpiringAt(long long seconds) {
  const std::string payload = "{\"exp\":" + std::to_string(seconds) + "}";
  return "eyJhbGciOiJIUzI1NiJ9." + tavuro::platform::base64Encode(payload) + ".sig";
}

TEST(CredentialFile, LoadingTakesOnlyTextValues) {
  const struct {
    std::string bytes;
    bool read;
    Text username, password, kelmo;
  } cases[] = {
      {"<plist><dict><key>tavuro_username</key><string>u</string>", false, {}, {}, {}},
      {plistXml({{"tavuro_username", "<integer>7</integer>"},
                 {"tavuro_password", "<string/>"},
                 {"kelmo_endpoint", "<integer>1</integer>"}}),
       true, {}, "", TAVURO_KELMO_DEFAULT_ENDPOINT},
      {plistXml({{"kelmo_endpoint", "<string></string>"}}), true, {}, {}, ""},
  };
  for (const auto& c : cases) {
    TempDir dir;
    dir.write("TavuroConfig.plist", c.bytes);
    const auto fields = tavuro::detail::loadCredentialFile(dir.config());
    ASSERT_EQ(fields.endpoints != nullptr, c.read) << c.bytes;
    EXPECT_EQ(fields.username, c.username) << c.bytes;
    EXPECT_EQ(fields.password, c.password) << c.bytes;
    EXPECT_EQ(c.read ? fields.endpoints->kelmoEndpoint() : std::nullopt, c.kelmo) << c.bytes;
  }
}

TEST(Credential, WithoutAConfigurationFileStaysEmptyAndWritesNothing) {
  TempDir dir;
  std::filesystem::create_directory(dir.config());  // no resource either
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
  tavuro::setResourceDirectory(dir.path());
  const auto endpoints = Credential::endpoints();
  ASSERT_NE(endpoints, nullptr);
  EXPECT_EQ(endpoints->kelmoEndpoint(), "kelmo");
  EXPECT_EQ(Credential::subscription(), "sub");

  Dict expected{{"tavuro_password", "pass"}, {"tavuro_subscription", "sub"},
                {"frm_endpoint", "frm"}, {"ferisant_endpoint", "id"}, {"med_endpoint", "med"}};
  Credential::setUsername(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);

  // A change on the shared record reaches the file only with the next save.
  endpoints->setFrmEndpoint("frm2");
  endpoints->setIdEndpoint(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);
  Credential::setSubscription(Credential::subscription());  // saves even without a change
  expected["frm_endpoint"] = "frm2";
  expected.erase("ferisant_endpoint");
  EXPECT_EQ(readBack(dir.config()), expected);

  Credential::setPassword("");
  const auto empty = tavuro::Endpoints::newInstance();
  Credential::setEndpoints(empty);
  EXPECT_EQ(Credential::endpoints(), empty);
  EXPECT_EQ(readBack(dir.config()), (Dict{{"tavuro_password", ""}, {"tavuro_subscription", "sub"}}));
  EXPECT_EQ(endpoints->passiveLivenessEndpoint(), "live");  // memory keeps what the file lost
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

TEST(Credential, TokenSlotChangesOnlyOnSuccessOrRemoval) {
  TempDir dir;
  tavuro::setResourceDirectory(dir.path());
  tavuro::test::FixedClock clock(1000.0);
  Credential::setUsername("user");
  Credential::setPassword("pass");
  EXPECT_FALSE(Credential::removeToken());

  const std::string first = tokenExpiringAt(2000);
  EXPECT_TRUE(Credential::setToken(first));
  for (const std::string& rejected : {tokenExpiringAt(1000), std::string("a.b.c"), std::string(".")}) {
    EXPECT_FALSE(Credential::setToken(rejected)) << rejected;
  }
  clock.set(5000.0);  // the stored token has expired but stays in use
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
  EXPECT_FALSE(Credential::isCredentialValid(std::nullopt));
  EXPECT_FALSE(Credential::isCredentialValid(""));
  EXPECT_EQ(tavuro::detail::credentialLoadCount(), 0u);  // the store was not touched

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
    ASSERT_TRUE(!c.token || Credential::setToken(tokenExpiringAt(2000)));
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
