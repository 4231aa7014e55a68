#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "credential_test_support.h"
#include "platform/Base64.h"
#include "platform/FileSystem.h"
#include "platform/Plist.h"

namespace {

using tavuro::Credential;
using tavuro::detail::CredentialStore;
using tavuro::test::plistXml;
using tavuro::test::storeEnvironment;
using tavuro::test::TempDir;
using Dict = std::map<std::string, std::string>;
using Text = std::optional<std::string>;

const Dict kFullFile{
    {"tavuro_username", "<string>user</string>"},
    {"tavuro_password", "<string>pass</string>"},
    {"tavuro_subscription", "<string>sub</string>"},
    {"frm_endpoint", "<string>frm</string>"},
    {"ferisant_endpoint", "<string>id</string>"},
    {"med_endpoint", "<string>med</string>"},
    {"passive_liveness_endpoint", "<string>live</string>"},
    {"kelmo_endpoint", "<string>kelmo</string>"},
    {"unknown_key", "<string>x</string>"},
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
  const std::string wrongKinds = plistXml({{"tavuro_username", "<integer>7</integer>"},
                                           {"tavuro_password", "<string/>"},
                                           {"kelmo_endpoint", "<integer>1</integer>"}});
  const struct {
    std::string bytes;
    bool read;
    Text username, password, kelmo;
  } cases[] = {
      {"<plist><dict><key>tavuro_username</key><string>u</string>", false, {}, {}, {}},
      {wrongKinds, true, {}, "", TAVURO_KELMO_DEFAULT_ENDPOINT},
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

TEST(CredentialStore, WithoutAConfigurationFileStaysEmptyAndWritesNothing) {
  TempDir dir;
  std::filesystem::create_directory(dir.config());  // no resource either
  CredentialStore store(storeEnvironment(dir));
  EXPECT_EQ(store.username(), std::nullopt);
  EXPECT_EQ(store.endpoints(), nullptr);
  store.setUsername("user");
  store.setEndpoints(tavuro::Endpoints::newInstance());
  EXPECT_EQ(store.username(), "user");
  EXPECT_TRUE(std::filesystem::is_empty(dir.config()));
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

TEST(CredentialStore, EverySaveWritesOnlyTheSavedKeys) {
  TempDir dir;
  dir.write("TavuroConfig.plist", plistXml(kFullFile));
  CredentialStore store(storeEnvironment(dir));
  const auto endpoints = store.endpoints();
  ASSERT_NE(endpoints, nullptr);
  EXPECT_EQ(endpoints->kelmoEndpoint(), "kelmo");
  EXPECT_EQ(store.subscription(), "sub");

  Dict expected{
      {"tavuro_password", "pass"}, {"tavuro_subscription", "sub"}, {"frm_endpoint", "frm"},
      {"ferisant_endpoint", "id"}, {"med_endpoint", "med"},
  };
  store.setUsername(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);

  // A change on the shared record reaches the file only with the next save.
  endpoints->setFrmEndpoint("frm2");
  endpoints->setIdEndpoint(std::nullopt);
  EXPECT_EQ(readBack(dir.config()), expected);
  store.setSubscription(store.subscription());  // saves even without a change
  expected["frm_endpoint"] = "frm2";
  expected.erase("ferisant_endpoint");
  EXPECT_EQ(readBack(dir.config()), expected);

  store.setPassword("");
  const auto empty = tavuro::Endpoints::newInstance();
  store.setEndpoints(empty);
  EXPECT_EQ(store.endpoints(), empty);
  EXPECT_EQ(readBack(dir.config()),
            (Dict{{"tavuro_password", ""}, {"tavuro_subscription", "sub"}}));
  EXPECT_EQ(endpoints->passiveLivenessEndpoint(), "live");  // memory keeps what the file lost
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

TEST(CredentialStore, TokenSlotChangesOnlyOnSuccessOrRemoval) {
  TempDir dir;
  double now = 1000.0;
  CredentialStore store(storeEnvironment(dir, &now));
  store.setUsername("user");
  store.setPassword("pass");
  EXPECT_FALSE(store.removeToken());

  const std::string first = tokenExpiringAt(2000);
  EXPECT_TRUE(store.setToken(first));
  for (const auto& rejected : {tokenExpiringAt(1000), std::string("a.b.c"), std::string(".")}) {
    EXPECT_FALSE(store.setToken(rejected)) << rejected;
  }
  now = 5000.0;  // the stored token has expired but stays in use
  EXPECT_EQ(store.tavuroAuthHeader(), "Bearer " + first);
  EXPECT_FALSE(store.setToken(tokenExpiringAt(4000)));
  EXPECT_EQ(store.token()->value(), first);

  const std::string second = tokenExpiringAt(6000);
  EXPECT_TRUE(store.setToken(second));
  EXPECT_EQ(store.tavuroAuthHeader(), "Bearer " + second);
  EXPECT_TRUE(store.removeToken());
  EXPECT_FALSE(store.removeToken());
  EXPECT_EQ(store.token(), nullptr);
  EXPECT_EQ(store.tavuroAuthHeader(), "Basic dXNlcjpwYXNz");
}

TEST(CredentialStore, BasicHeaderNeedsUserNameAndPassword) {
  const struct {
    Text username, password, header;
  } cases[] = {
      {"user", "pass", "Basic dXNlcjpwYXNz"},
      {"", "", "Basic Og=="},
      {"a:b", "\xc3\xbc", "Basic YTpiOsO8"},
      {"user", {}, {}},
      {{}, "pass", {}},
      {{}, {}, {}},
  };
  TempDir dir;
  CredentialStore store(storeEnvironment(dir));
  for (const auto& c : cases) {
    store.setUsername(c.username);
    store.setPassword(c.password);
    EXPECT_EQ(store.basicAuthHeader(), c.header);
    EXPECT_EQ(store.tavuroAuthHeader(), c.header);
  }
}

TEST(CredentialStore, ValidityNeedsThreeFilledCredentialsOrAnyToken) {
  TempDir dir;
  double now = 1000.0;
  const struct {
    Text username, password, subscription;
    bool token, valid;
  } cases[] = {
      {"u", "p", "s", false, true}, {"u", "p", {}, false, false}, {"u", "", "s", false, false},
      {{}, {}, {}, true, true},     {"u", "p", "", true, true},
  };
  for (const auto& c : cases) {
    CredentialStore store(storeEnvironment(dir, &now));
    store.setUsername(c.username);
    store.setPassword(c.password);
    store.setSubscription(c.subscription);
    ASSERT_TRUE(!c.token || store.setToken(tokenExpiringAt(2000)));
    now = 3000.0;  // expiry is not looked at
    EXPECT_EQ(store.hasCredentialsOrToken(), c.valid);
    now = 1000.0;
  }
}

// The process-wide store: made on first use only, once, by whichever
// thread comes first.
TEST(Credential, AnEmptyEndpointIsRefusedBeforeTheStoreLoads) {
  TempDir dir;
  dir.write("TavuroConfig.plist", plistXml({{"tavuro_username", "<string>before</string>"}}));
  tavuro::setResourceDirectory(dir.path());
  EXPECT_FALSE(Credential::isCredentialValid(std::nullopt));
  EXPECT_FALSE(Credential::isCredentialValid(""));
  dir.write("TavuroConfig.plist", plistXml({{"tavuro_username", "<string>after</string>"}}));
  EXPECT_EQ(Credential::username(), "after");  // loaded only now
}

TEST(Credential, ConcurrentFirstUseSeesOneLoadedStore) {
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
  for (const auto& e : seen) EXPECT_TRUE(e != nullptr && e == seen[0]);
}

}  // namespace
