#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "platform/Base64.h"
#include "platform/FileSystem.h"
#include "platform/Plist.h"
#include "platform/Resources.h"

namespace {

using tavuro::Credential;
using tavuro::detail::CredentialStore;
using tavuro::platform::AtomicWriteOptions;
using tavuro::platform::AtomicWriteStep;
using tavuro::platform::readWholeFile;
using tavuro::platform::writeFileAtomically;
using tavuro::platform::writeXmlPlist;
using Dict = std::map<std::string, std::string>;
using Names = std::set<std::string>;
using Text = std::optional<std::string>;

/// A fresh, empty directory, removed with everything in it at the end.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavuro-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
  }
  ~TempDir() { std::filesystem::remove_all(path_, ignored_); }
  std::string file(const std::string& name = "TavuroConfig.plist") const {
    return path_ + "/" + name;
  }
  void write(const std::string& bytes, const std::string& name = "TavuroConfig.plist") const {
    std::ofstream(file(name), std::ios::binary) << bytes;
  }
  Names entries() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }
  /// A store over this directory's configuration file, its clock at `*now`.
  CredentialStore::Environment environment(const double* now = nullptr) const {
    auto environment = CredentialStore::systemEnvironment();
    environment.configurationPath = [this] {
      return tavuro::platform::pathForResource(path_, "TavuroConfig", "plist");
    };
    if (now) {
      environment.now = [now] { return tavuro::Instant(std::chrono::duration<double>(*now)); };
    }
    return environment;
  }

  std::string path_;
  std::error_code ignored_;
};

std::string tokenExpiringAt(long long seconds) {
  const std::string payload = "{\"exp\":" + std::to_string(seconds) + "}";
  return "eyJhbGciOiJIUzI1NiJ9." + tavuro::platform::base64Encode(payload) + ".sig";
}

TEST(CredentialStore, TokenSlotChangesOnlyOnSuccessOrRemoval) {
  TempDir dir;
  double now = 1000.0;
  CredentialStore store(dir.environment(&now));
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

// The Basic header needs a user name and a password; validity needs all three
// texts filled, or any token (its expiry is not looked at).
TEST(CredentialStore, HeaderAndValidityFollowWhatIsSet) {
  TempDir dir;
  double now = 1000.0;
  const struct {
    Text username, password, subscription;
    bool token;
    Text header;
    bool valid;
  } cases[] = {{"user", "pass", "s", false, "Basic dXNlcjpwYXNz", true},
               {"", "", "s", false, "Basic Og==", false},
               {"a:b", "\xc3\xbc", {}, false, "Basic YTpiOsO8", false},
               {"user", {}, "s", false, {}, false},
               {{}, "pass", {}, false, {}, false},
               {{}, {}, {}, true, {}, true},
               {"u", "p", "", true, "Basic dTpw", true}};
  for (const auto& c : cases) {
    CredentialStore store(dir.environment(&now));
    store.setUsername(c.username);
    store.setPassword(c.password);
    store.setSubscription(c.subscription);
    ASSERT_TRUE(!c.token || store.setToken(tokenExpiringAt(2000)));
    now = 3000.0;
    EXPECT_EQ(store.basicAuthHeader(), c.header);
    EXPECT_EQ(store.hasCredentialsOrToken(), c.valid);
    EXPECT_EQ(c.token ? c.header : store.tavuroAuthHeader(), c.header);
    now = 1000.0;
  }
}

// Which texts load back is the save fuzz target's check; here, what the store
// does with one that would not.
TEST(CredentialStore, SavesOnlyWhatLoadsBackAndKeepsTheOldFileOtherwise) {
  TempDir dir;
  dir.write(writeXmlPlist({}));
  CredentialStore store(dir.environment());
  store.setPassword(std::string("nul\0inside\r\n", 12));
  const std::string saved = *readWholeFile(dir.file());
  EXPECT_EQ(tavuro::detail::loadCredentialFile(dir.file()).password, store.password());
  for (const std::string& text : {std::string("pw-\xFF"), std::string((16 << 20) + 1, 'p')}) {
    store.setPassword(text);
    EXPECT_EQ(store.password(), text);
    EXPECT_EQ(readWholeFile(dir.file()), saved);
  }
  EXPECT_EQ(dir.entries(), Names{"TavuroConfig.plist"});
}

// The process-wide store: made on first use only, once, by whichever
// thread comes first. It loads once per process, so each test runs its body
// in a child forked from a process that never touches the store.
void inFreshProcess(const std::function<void()>& body) {
  EXPECT_EXIT(
      {
        body();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(Credential, AnEmptyEndpointIsRefusedBeforeTheStoreLoads) {
  inFreshProcess([] {
    TempDir dir;
    dir.write(writeXmlPlist({{"tavuro_username", "before"}}));
    tavuro::setResourceDirectory(dir.path_);
    EXPECT_FALSE(Credential::isCredentialValid(std::nullopt));
    EXPECT_FALSE(Credential::isCredentialValid(""));
    dir.write(writeXmlPlist({{"tavuro_username", "after"}}));
    EXPECT_EQ(Credential::username(), "after");  // loaded only now
  });
}

TEST(Credential, ConcurrentFirstUseSeesOneLoadedStore) {
  inFreshProcess([] {
    TempDir dir;
    dir.write(writeXmlPlist({{"tavuro_username", "user"}}));
    tavuro::setResourceDirectory(dir.path_);
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
  });
}

int g_calls = 0;

// Writes half of what it is asked for, then fails as a full disk would.
long failHalfWay(int fd, const void* bytes, std::size_t count) {
  if (g_calls++ == 0) return static_cast<long>(::write(fd, bytes, count / 2));
  errno = ENOSPC;
  return -1;
}
// Interrupted every other call, and writes one byte at a time otherwise.
long interruptAndTrickle(int fd, const void* bytes, std::size_t) {
  if (g_calls++ % 2 == 0) {
    errno = EINTR;
    return -1;
  }
  return static_cast<long>(::write(fd, bytes, 1));
}

AtomicWriteOptions writingWith(tavuro::platform::WriteFunction write, bool unnamed = true) {
  AtomicWriteOptions options;
  options.write = write;
  options.unnamedTemporary = unnamed;
  return options;
}

TEST(AtomicWrite, FailureLeavesTheOldFileAndNoTemporary) {
  // A null write function with a directory in the target's place makes the
  // rename fail after everything was written.
  const auto noProgress = [](int, const void*, std::size_t) -> long { return 0; };
  for (const auto write : {failHalfWay, +noProgress, tavuro::platform::WriteFunction()}) {
    TempDir dir;
    if (write == nullptr) std::filesystem::create_directory(dir.file("target"));
    if (write != nullptr) dir.write("old content", "target");
    g_calls = 0;
    EXPECT_FALSE(
        writeFileAtomically(dir.file("target"), std::string(100000, 'x'), writingWith(write)));
    EXPECT_EQ(dir.entries(), Names{"target"});
    EXPECT_EQ(readWholeFile(dir.file("target")), write ? "old content" : Text());
  }
  EXPECT_FALSE(writeFileAtomically("/nonexistent-tavuro-dir/target", "x"));

  // The store keeps a value whose save failed in memory only.
  TempDir dir;
  const std::string original = writeXmlPlist({{"tavuro_username", "old"}});
  dir.write(original);
  auto environment = dir.environment();
  environment.writeFile = [](const std::string& path, std::string_view bytes) {
    g_calls = 0;
    return writeFileAtomically(path, bytes, writingWith(failHalfWay));
  };
  CredentialStore store(environment);
  store.setUsername("new");
  EXPECT_EQ(store.username(), "new");
  EXPECT_EQ(readWholeFile(dir.file()), original);
  EXPECT_EQ(dir.entries(), Names{"TavuroConfig.plist"});
}

TEST(AtomicWrite, WritesEverythingAndKeepsOwnerAndPermissionBits) {
  const std::string content(5000, 'y');
  // Root may keep another user's file theirs; others own what they write.
  const uid_t owner = ::geteuid() == 0 ? 65534 : ::geteuid();
  const gid_t group = ::geteuid() == 0 ? 65534 : ::getegid();
  for (const mode_t mode : {0640, 0664, 0755}) {  // 0600 is what a new file gets anyway
    TempDir dir;
    dir.write("old", "target");
    ::chmod(dir.file("target").c_str(), mode);
    ASSERT_EQ(::chown(dir.file("target").c_str(), owner, group), 0);
    g_calls = 0;
    ASSERT_TRUE(writeFileAtomically(
        dir.file("target"), content,
        writingWith(mode == 0640 ? interruptAndTrickle : nullptr, mode != 0664)));
    EXPECT_EQ(readWholeFile(dir.file("target")), content);
    struct stat info {};
    ASSERT_EQ(::stat(dir.file("target").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, mode);
    EXPECT_EQ(info.st_uid, owner);
    EXPECT_EQ(info.st_gid, group);
    EXPECT_EQ(dir.entries(), Names{"target"});
  }
}

// Where the child writing in the crash test below is killed; none: mid-write.
std::optional<AtomicWriteStep> g_crashStep;

TEST(AtomicWrite, ACrashAtAnyStepLeavesNoCopyOnceTheNextWriteIsDone) {
  const std::string secret = "<dict><key>tavuro_password</key><string>s3cret</string></dict>";
  for (const bool unnamed : {true, false}) {
    for (const std::optional<AtomicWriteStep> crash :
         {std::optional(AtomicWriteStep::kCreated), std::optional<AtomicWriteStep>(),
          std::optional(AtomicWriteStep::kFlushed), std::optional(AtomicWriteStep::kNamed),
          std::optional(AtomicWriteStep::kReplaced)}) {
      SCOPED_TRACE(testing::Message() << "unnamed " << unnamed << ", crash at step "
                                      << (crash ? static_cast<int>(*crash) : -1));
      TempDir dir;
      dir.write("old", "target");
      dir.write("kept", "other");
      ::chmod(dir.file("target").c_str(), 0640);
      g_crashStep = crash;
      for (int i = 0; i < 3; ++i) {  // a sequence of crashes
        const pid_t child = ::fork();
        if (child == 0) {
          AtomicWriteOptions options = writingWith(nullptr, unnamed);
          if (!crash) {
            options.write = [](int fd, const void* bytes, std::size_t count) -> long {
              static_cast<void>(::write(fd, bytes, count / 2));
              ::raise(SIGKILL);
              return -1;
            };
          }
          options.atStep = [](AtomicWriteStep step) {
            if (g_crashStep == step) ::raise(SIGKILL);
          };
          writeFileAtomically(dir.file("target"), secret, options);
          ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
      }
      EXPECT_EQ(readWholeFile(dir.file("target")),
                crash == AtomicWriteStep::kReplaced ? secret : "old");
      Names left = dir.entries();
      left.erase("target");
      left.erase("other");
      // An unnamed file has no name to leave before it is linked.
      EXPECT_TRUE(left.empty() || !unnamed || crash == AtomicWriteStep::kNamed);
      for (const std::string& name : left) {
        struct stat info {};
        ASSERT_EQ(::stat(dir.file(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 07777 & ~0640U, 0U) << name;
      }
      // The next load or the next write removes what the crashes left.
      if (unnamed) {
        ASSERT_TRUE(writeFileAtomically(dir.file("target"), "new"));
      } else {
        (void)tavuro::detail::loadCredentialFile(dir.file("target"));
      }
      EXPECT_EQ(dir.entries(), (Names{"other", "target"}));
    }
  }
}

TEST(ReadWholeFile, RefusesWhatIsNotAFileOrTooLarge) {
  TempDir dir;
  dir.write("0123456789", "ten");
  EXPECT_EQ(readWholeFile(dir.file("ten"), 10), "0123456789");
  EXPECT_EQ(readWholeFile(dir.file("ten"), 9), std::nullopt);
  EXPECT_EQ(readWholeFile(dir.path_), std::nullopt);
  EXPECT_EQ(readWholeFile(dir.file("missing")), std::nullopt);
  ASSERT_EQ(::mkfifo(dir.file("fifo").c_str(), 0600), 0);
  EXPECT_EQ(readWholeFile(dir.file("fifo")), std::nullopt);  // and does not block
}

}  // namespace
