#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "common/CredentialStore.h"
#include "credential_test_support.h"
#include "platform/FileSystem.h"

namespace {

using tavuro::platform::AtomicWriteOptions;
using tavuro::platform::AtomicWriteStep;
using tavuro::platform::readWholeFile;
using tavuro::platform::writeFileAtomically;
using tavuro::test::TempDir;

int g_calls = 0;

// Writes half of what it is asked for, then fails as a full disk would.
long failHalfWay(int fd, const void* bytes, std::size_t count) {
  if (g_calls++ == 0) return static_cast<long>(::write(fd, bytes, count / 2));
  errno = ENOSPC;
  return -1;
}
const auto makeNoProgress = [](int, const void*, std::size_t) -> long { return 0; };
// Interrupted every other call, and writes one byte at a time otherwise.
long interruptAndTrickle(int fd, const void* bytes, std::size_t) {
  if (g_calls++ % 2 == 0) {
    errno = EINTR;
    return -1;
  }
  return static_cast<long>(::write(fd, bytes, 1));
}

AtomicWriteOptions writingWith(tavuro::platform::WriteFunction write) {
  AtomicWriteOptions options;
  options.write = write;
  return options;
}

TEST(AtomicWrite, FailureLeavesTheOldFileAndNoTemporary) {
  // A null write function with a directory in the target's place makes the
  // rename fail after everything was written.
  const tavuro::platform::WriteFunction cases[] = {failHalfWay, makeNoProgress, nullptr};
  for (const auto write : cases) {
    TempDir dir;
    if (write == nullptr) {
      std::filesystem::create_directory(dir.file("target"));
    } else {
      dir.write("target", "old content");
    }
    g_calls = 0;
    EXPECT_FALSE(
        writeFileAtomically(dir.file("target"), std::string(100000, 'x'), writingWith(write)));
    EXPECT_EQ(dir.entries(), std::set<std::string>{"target"});
    const std::optional<std::string> old = write ? "old content" : std::optional<std::string>();
    EXPECT_EQ(readWholeFile(dir.file("target")), old);  // a directory reads as nothing
  }
  EXPECT_FALSE(writeFileAtomically("/nonexistent-tavuro-dir/target", "x"));
}

TEST(AtomicWrite, WritesEverythingAndKeepsOwnerAndPermissionBits) {
  const std::string content(5000, 'y');
  // Root may keep another user's file theirs; others own what they write.
  const uid_t owner = ::geteuid() == 0 ? 65534 : ::geteuid();
  const gid_t group = ::geteuid() == 0 ? 65534 : ::getegid();
  for (const mode_t mode : {0640, 0664, 0755}) {  // 0600 is what a new file gets anyway
    TempDir dir;
    dir.write("target", "old");
    ::chmod(dir.file("target").c_str(), mode);
    ASSERT_EQ(::chown(dir.file("target").c_str(), owner, group), 0);
    g_calls = 0;
    AtomicWriteOptions options = writingWith(mode == 0640 ? interruptAndTrickle : nullptr);
    options.unnamedTemporary = mode != 0664;
    ASSERT_TRUE(writeFileAtomically(dir.file("target"), content, options));
    EXPECT_EQ(readWholeFile(dir.file("target")), content);
    struct stat info {};
    ASSERT_EQ(::stat(dir.file("target").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, mode);
    EXPECT_EQ(info.st_uid, owner);
    EXPECT_EQ(info.st_gid, group);
    EXPECT_EQ(dir.entries(), std::set<std::string>{"target"});
  }
}

// Where the child writing in the crash test below is killed; none: mid-write.
std::optional<AtomicWriteStep> g_crashStep;

void killAt(AtomicWriteStep step) {
  if (g_crashStep == step) ::raise(SIGKILL);
}
long writeHalfThenDie(int fd, const void* bytes, std::size_t count) {
  static_cast<void>(::write(fd, bytes, count / 2));
  ::raise(SIGKILL);
  return -1;
}

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
      dir.write("target", "old");
      dir.write("other", "kept");
      ::chmod(dir.file("target").c_str(), 0640);
      g_crashStep = crash;
      for (int i = 0; i < 3; ++i) {  // a sequence of crashes
        const pid_t child = ::fork();
        if (child == 0) {
          AtomicWriteOptions options = writingWith(crash ? nullptr : writeHalfThenDie);
          options.atStep = killAt;
          options.unnamedTemporary = unnamed;
          writeFileAtomically(dir.file("target"), secret, options);
          ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
      }
      EXPECT_EQ(readWholeFile(dir.file("target")),
                crash == AtomicWriteStep::kReplaced ? secret : "old");
      std::set<std::string> left = dir.entries();
      left.erase("target");
      left.erase("other");
      // An unnamed file has no name to leave before it is linked.
      if (unnamed && crash != AtomicWriteStep::kNamed) {
        EXPECT_TRUE(left.empty());
      }
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
      EXPECT_EQ(dir.entries(), (std::set<std::string>{"other", "target"}));
    }
  }
}

TEST(ReadWholeFile, RefusesWhatIsNotAFileOrTooLarge) {
  TempDir dir;
  dir.write("ten", "0123456789");
  EXPECT_EQ(readWholeFile(dir.file("ten"), 10), "0123456789");
  EXPECT_EQ(readWholeFile(dir.file("ten"), 9), std::nullopt);
  EXPECT_EQ(readWholeFile(dir.path()), std::nullopt);
  EXPECT_EQ(readWholeFile(dir.file("missing")), std::nullopt);
  ASSERT_EQ(::mkfifo(dir.file("fifo").c_str(), 0600), 0);
  EXPECT_EQ(readWholeFile(dir.file("fifo")), std::nullopt);  // and does not block
}

TEST(CredentialStore, FailedSaveKeepsTheNewValueInMemoryOnly) {
  TempDir dir;
  const auto original = tavuro::test::plistXml({{"tavuro_username", "<string>old</string>"}});
  dir.write("TavuroConfig.plist", original);
  auto environment = tavuro::test::storeEnvironment(dir);
  environment.writeFile = [](const std::string& path, std::string_view bytes) {
    g_calls = 0;
    return writeFileAtomically(path, bytes, writingWith(failHalfWay));
  };
  tavuro::detail::CredentialStore store(environment);
  store.setUsername("new");
  EXPECT_EQ(store.username(), "new");
  EXPECT_EQ(readWholeFile(dir.config()), original);
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

TEST(CredentialStore, SavesOnlyWhatLoadsBackAndKeepsTheOldFileOtherwise) {
  TempDir dir;
  dir.write("TavuroConfig.plist", tavuro::test::plistXml({}));
  tavuro::detail::CredentialStore store(tavuro::test::storeEnvironment(dir));
  const std::string nul("nul\0inside", 10), big(1 << 20, 'p'), tooBig((16 << 20) + 1, 'p');
  const std::string faithful[] = {
      "", "a\r\nb\r", "<&>]]>&amp;", nul, "\x01\x7F\t", "\xC3\xA9\xF0\x9F\x98\x80", big};
  for (const std::string& text : faithful) {
    store.setPassword(text);
    EXPECT_EQ(tavuro::detail::loadCredentialFile(dir.config()).password, text);
  }
  const std::string lastSaved = *readWholeFile(dir.config());
  const std::string unfaithful[] = {"pw-\xFF",          "\xC0\xAF",    "\xED\xA0\x80",
                                    "\xF4\x90\x80\x80", "cut\xE2\x82", tooBig};
  for (const std::string& text : unfaithful) {
    store.setPassword(text);
    EXPECT_EQ(store.password(), text);
    EXPECT_EQ(readWholeFile(dir.config()), lastSaved);
  }
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

// Runs `body` where the directory's permission bits really bind: as the
// caller when it is not root, else in a child that has dropped to an
// unprivileged user (root writes through permission bits). True when `body`
// returned true.
template <typename Body>
bool runWithoutPrivileges(Body body) {
  if (::geteuid() != 0) return body();
  const pid_t child = ::fork();
  if (child == 0) {
    const bool dropped = ::setgid(65534) == 0 && ::setuid(65534) == 0;
    ::_exit(dropped && body() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

TEST(CredentialStore, ReadOnlyDirectoryKeepsTheFileAndTheNewValueInMemory) {
  TempDir dir;
  const auto original = tavuro::test::plistXml({{"tavuro_username", "<string>old</string>"}});
  dir.write("TavuroConfig.plist", original);
  ::chmod(dir.config().c_str(), 0644);
  ::chmod(dir.path().c_str(), 0555);
  const bool keptInMemory = runWithoutPrivileges([&] {
    tavuro::detail::CredentialStore store(tavuro::test::storeEnvironment(dir));
    store.setUsername("new");
    return store.username() == std::optional<std::string>("new");
  });
  ::chmod(dir.path().c_str(), 0755);
  EXPECT_TRUE(keptInMemory);
  EXPECT_EQ(readWholeFile(dir.config()), original);
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

}  // namespace
