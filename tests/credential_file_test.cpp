#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"
#include "credential_test_support.h"
#include "platform/FileSystem.h"

namespace {

using tavuro::platform::readWholeFile;
using tavuro::platform::setWriteFunctionForTesting;
using tavuro::platform::writeFileAtomically;
using tavuro::test::TempDir;

int g_calls = 0;

// Writes half of what it is asked for, then fails as a full disk would.
long failHalfWay(int fd, const void* bytes, std::size_t count) {
  if (g_calls++ == 0) return static_cast<long>(::write(fd, bytes, count / 2));
  errno = ENOSPC;
  return -1;
}
long makeNoProgress(int, const void*, std::size_t) { return 0; }
// Interrupted every other call, and writes one byte at a time otherwise.
long interruptAndTrickle(int fd, const void* bytes, std::size_t) {
  if (g_calls++ % 2 == 0) {
    errno = EINTR;
    return -1;
  }
  return static_cast<long>(::write(fd, bytes, 1));
}

class SeamReset {
 public:
  explicit SeamReset(tavuro::platform::WriteFunction f) { setWriteFunctionForTesting(f); }
  ~SeamReset() { setWriteFunctionForTesting(nullptr); }
};

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
    const SeamReset seam(write);
    EXPECT_FALSE(writeFileAtomically(dir.file("target"), std::string(100000, 'x')));
    EXPECT_EQ(dir.entries(), std::set<std::string>{"target"});
    const std::optional<std::string> old = write ? "old content" : std::optional<std::string>();
    EXPECT_EQ(readWholeFile(dir.file("target")), old);  // a directory reads as nothing
  }
  EXPECT_FALSE(writeFileAtomically("/nonexistent-tavuro-dir/target", "x"));
}

TEST(AtomicWrite, WritesEverythingAndKeepsPermissionBits) {
  const std::string content(5000, 'y');
  for (const mode_t mode : {0640, 0664, 0755}) {  // 0600 is what a new file gets anyway
    TempDir dir;
    dir.write("target", "old");
    ::chmod(dir.file("target").c_str(), mode);
    g_calls = 0;
    const SeamReset seam(mode == 0640 ? interruptAndTrickle : nullptr);
    ASSERT_TRUE(writeFileAtomically(dir.file("target"), content));
    EXPECT_EQ(readWholeFile(dir.file("target")), content);
    struct stat info {};
    ASSERT_EQ(::stat(dir.file("target").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, mode);
    EXPECT_EQ(dir.entries(), std::set<std::string>{"target"});
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

TEST(Credential, FailedSaveKeepsTheNewValueInMemoryOnly) {
  TempDir dir;
  const std::string original = tavuro::test::plistXml({{"tavuro_username", "<string>old</string>"}});
  dir.write("TavuroConfig.plist", original);
  tavuro::setResourceDirectory(dir.path());
  g_calls = 0;
  const SeamReset seam(failHalfWay);
  tavuro::Credential::setUsername("new");
  EXPECT_EQ(tavuro::Credential::username(), "new");
  EXPECT_EQ(readWholeFile(dir.config()), original);
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

TEST(Credential, ReadOnlyDirectoryKeepsTheFileAndTheNewValueInMemory) {
  TempDir dir;
  const std::string original = tavuro::test::plistXml({{"tavuro_username", "<string>old</string>"}});
  dir.write("TavuroConfig.plist", original);
  ::chmod(dir.config().c_str(), 0644);
  ::chmod(dir.path().c_str(), 0555);
  const bool keptInMemory = runWithoutPrivileges([&] {
    tavuro::setResourceDirectory(dir.path());
    tavuro::Credential::setUsername("new");
    return tavuro::Credential::username() == std::optional<std::string>("new");
  });
  ::chmod(dir.path().c_str(), 0755);
  EXPECT_TRUE(keptInMemory);
  EXPECT_EQ(readWholeFile(dir.config()), original);
  EXPECT_EQ(dir.entries(), std::set<std::string>{"TavuroConfig.plist"});
}

}  // namespace
