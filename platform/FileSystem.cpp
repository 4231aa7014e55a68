#include "platform/FileSystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>

#if defined(__unix__) || defined(__APPLE__)
#define TAVURO_POSIX_FILES 1
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the POSIX header of kill()
#include <sys/stat.h>
#include <unistd.h>
#else
#include <fstream>
#endif

namespace tavuro::platform {

#if defined(TAVURO_POSIX_FILES)
namespace {

constexpr int kCloseOnExec = O_CLOEXEC;

long systemWrite(int fd, const void* bytes, std::size_t count) {
  return static_cast<long>(::write(fd, bytes, count));
}

bool writeAll(int fd, std::string_view bytes, WriteFunction write) {
  if (write == nullptr) write = systemWrite;
  while (!bytes.empty()) {
    const long written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    // Zero progress on a non-empty buffer would loop for ever; treat it as
    // the failure it is (a full disk reports itself this way on some
    // systems).
    if (written <= 0 || static_cast<std::size_t>(written) > bytes.size()) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool flushToDisk(int fd) {
#if defined(__APPLE__)
  // Here fsync alone leaves the data in the drive's cache; F_FULLFSYNC
  // flushes it.
  if (::fcntl(fd, F_FULLFSYNC) == 0) return true;
#endif
  int result;
  do {
    result = ::fsync(fd);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

bool closeDescriptor(int fd) {
  // On Linux the descriptor is released even when close reports EINTR, so
  // retrying could close someone else's; EINTR is not a failure here.
  return ::close(fd) == 0 || errno == EINTR;
}

std::string fileNameOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Temporary files are named ".NAME.tmp-PID-NONCE-COUNTER-ATTEMPT" beside the
// target. The process id tells whether the writer still runs; the nonce,
// fixed per process, tells this process's files from those of a dead one
// that had the same id; the counter and O_EXCL keep concurrent writers apart.
std::string temporaryPrefixFor(const std::string& path) {
  return '.' + fileNameOf(path) + ".tmp-";
}

std::uint64_t processNonce() {
  static const std::uint64_t nonce = [] {
    const auto now =
        static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    const auto ticks =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    return (now ^ (ticks * 0x9E3779B97F4A7C15ULL)) % 1000000007ULL;
  }();
  return nonce;
}

std::string temporaryNameFor(const std::string& path, unsigned attempt) {
  static std::atomic<std::uint32_t> counter{0};
  std::string name = directoryOf(path);
  if (name.back() != '/') name += '/';
  name += temporaryPrefixFor(path) + std::to_string(::getpid()) + '-' +
          std::to_string(processNonce()) + '-' +
          std::to_string(counter.fetch_add(1, std::memory_order_relaxed)) + '-' +
          std::to_string(attempt);
  return name;
}

// Reads "PID-NONCE-" at the start of what follows the prefix.
bool parseTemporarySuffix(std::string_view suffix, long long& pid, std::uint64_t& nonce) {
  const auto number = [&suffix](std::uint64_t& value) {
    std::size_t digits = 0;
    value = 0;
    while (digits < suffix.size() && digits < 18 && suffix[digits] >= '0' &&
           suffix[digits] <= '9') {
      value = value * 10 + static_cast<std::uint64_t>(suffix[digits] - '0');
      ++digits;
    }
    if (digits == 0 || digits == suffix.size() || suffix[digits] != '-') return false;
    suffix.remove_prefix(digits + 1);
    return true;
  };
  std::uint64_t rawPid = 0;
  if (!number(rawPid) || !number(nonce)) return false;
  pid = static_cast<long long>(rawPid);
  return true;
}

bool belongsToAnEndedWriter(std::string_view suffix) {
  long long pid = 0;
  std::uint64_t nonce = 0;
  if (!parseTemporarySuffix(suffix, pid, nonce)) return false;
  if (pid == static_cast<long long>(::getpid())) return nonce != processNonce();
  if (pid <= 0 || pid != static_cast<pid_t>(pid)) return false;
  // EPERM means a process of another user runs under that id: not ours.
  return ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

struct TemporaryFile {
  std::string path;  // empty while the file has no name
  int fd = -1;
};

std::optional<TemporaryFile> createNamedTemporaryBeside(const std::string& path) {
  for (unsigned attempt = 0; attempt < 16; ++attempt) {
    TemporaryFile file{temporaryNameFor(path, attempt), -1};
    file.fd = ::open(file.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | kCloseOnExec, 0600);
    if (file.fd >= 0) return file;
    if (errno != EEXIST && errno != EINTR) return std::nullopt;
  }
  return std::nullopt;
}

#if defined(O_TMPFILE) && defined(AT_EMPTY_PATH)
constexpr bool kHaveUnnamedFiles = true;

// A file in `directory` that has no name, so that a crash before it is
// linked leaves nothing behind. -1 where the file system has no such files.
int createUnnamedIn(const std::string& directory) {
  int fd;
  do {
    fd = ::open(directory.c_str(), O_TMPFILE | O_WRONLY | kCloseOnExec, 0600);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

// Gives the unnamed file `fd` a temporary name beside `path`. Linking
// through /proc needs no privilege; AT_EMPTY_PATH is the way without /proc.
bool nameUnnamed(int fd, const std::string& path, std::string& name) {
  const std::string self = "/proc/self/fd/" + std::to_string(fd);
  for (unsigned attempt = 0; attempt < 16; ++attempt) {
    name = temporaryNameFor(path, attempt);
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ||
        ::linkat(fd, "", AT_FDCWD, name.c_str(), AT_EMPTY_PATH) == 0) {
      return true;
    }
    if (errno != EEXIST) break;
  }
  name.clear();
  return false;
}
#else
constexpr bool kHaveUnnamedFiles = false;
int createUnnamedIn(const std::string&) {
  return -1;
}
bool nameUnnamed(int, const std::string&, std::string&) {
  return false;
}
#endif

// What the new file takes over from the file it replaces, so that a
// configuration file readable only by its owner stays so, and stays its
// owner's when root saves it.
struct Inheritance {
  mode_t mode = 0600;
  bool hasOwner = false;
  uid_t owner = 0;
  gid_t group = 0;
};

Inheritance inheritanceFrom(const std::string& path) {
  Inheritance inherited;
  struct stat info {};
  if (::stat(path.c_str(), &info) == 0) {
    inherited.mode = info.st_mode & 07777;
    inherited.hasOwner = true;
    inherited.owner = info.st_uid;
    inherited.group = info.st_gid;
  }
  return inherited;
}

// Gives `fd` the owner and permission bits of the replaced file and makes
// content and metadata durable. Changing the owner needs privilege; without
// it the file stays the caller's, as with any newly written file. The owner
// goes first, since chown may clear set-id bits.
bool seal(int fd, const Inheritance& inherited) {
  struct stat info {};
  if (inherited.hasOwner && ::fstat(fd, &info) == 0 &&
      (info.st_uid != inherited.owner || info.st_gid != inherited.group)) {
    static_cast<void>(::fchown(fd, inherited.owner, inherited.group));
  }
  return ::fchmod(fd, inherited.mode) == 0 && flushToDisk(fd);
}

// Makes the rename itself durable. Some file systems cannot flush a
// directory; the replacement has happened by then, so this is best effort.
void flushDirectory(const std::string& directory) {
  const int fd = ::open(directory.c_str(), O_RDONLY | kCloseOnExec);
  if (fd < 0) return;
  flushToDisk(fd);
  closeDescriptor(fd);
}

enum class Outcome { kReplaced, kFailed, kCannotName };

// One attempt of writeFileAtomically through an unnamed or a named file.
Outcome replaceThrough(bool unnamed, const std::string& path, std::string_view bytes,
                       const AtomicWriteOptions& options) {
  const auto reach = [&options](AtomicWriteStep step) {
    if (options.atStep != nullptr) options.atStep(step);
  };
  TemporaryFile file;
  if (unnamed) {
    file.fd = createUnnamedIn(directoryOf(path));
    if (file.fd < 0) return Outcome::kCannotName;
  } else {
    std::optional<TemporaryFile> named = createNamedTemporaryBeside(path);
    if (!named) return Outcome::kFailed;
    file = std::move(*named);
  }
  reach(AtomicWriteStep::kCreated);
  bool ok = writeAll(file.fd, bytes, options.write) && seal(file.fd, inheritanceFrom(path));
  if (ok) reach(AtomicWriteStep::kFlushed);
  bool cannotName = false;
  if (ok && unnamed) {
    ok = nameUnnamed(file.fd, path, file.path);
    cannotName = !ok;
  }
  ok = closeDescriptor(file.fd) && ok;
  if (ok) reach(AtomicWriteStep::kNamed);
  if (ok && ::rename(file.path.c_str(), path.c_str()) != 0) ok = false;
  if (!ok) {
    if (!file.path.empty()) ::unlink(file.path.c_str());
    return cannotName ? Outcome::kCannotName : Outcome::kFailed;
  }
  reach(AtomicWriteStep::kReplaced);
  flushDirectory(directoryOf(path));
  return Outcome::kReplaced;
}

}  // namespace

std::string directoryOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? std::string("/") : path.substr(0, slash);
}

std::optional<std::string> readWholeFile(const std::string& path, std::size_t maxBytes) {
  int fd;
  do {
    // O_NONBLOCK keeps a FIFO put in the file's place from blocking us; it
    // changes nothing for the regular files we go on to read.
    fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | kCloseOnExec);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return std::nullopt;

  std::optional<std::string> content;
  struct stat info {};
  if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) &&
      static_cast<std::uint64_t>(info.st_size) <= maxBytes) {
    // The size is a hint only: the file may change while we read, so the
    // loop is bounded by maxBytes and not by st_size.
    std::string buffer;
    buffer.resize(static_cast<std::size_t>(info.st_size) + 1);
    std::size_t used = 0;
    bool failed = false;
    while (!failed) {
      if (used == buffer.size()) {
        if (buffer.size() > maxBytes) break;
        buffer.resize(std::min(buffer.size() * 2, maxBytes + 1));
      }
      const ssize_t n = ::read(fd, &buffer[used], buffer.size() - used);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) failed = true;
      if (n <= 0) break;
      used += static_cast<std::size_t>(n);
    }
    if (!failed && used <= maxBytes) {
      buffer.resize(used);
      content = std::move(buffer);
    }
  }
  closeDescriptor(fd);
  return content;
}

void removeStaleTemporaries(const std::string& path) noexcept {
  try {
    DIR* directory = ::opendir(directoryOf(path).c_str());
    if (directory == nullptr) return;
    const std::string prefix = temporaryPrefixFor(path);
    while (const dirent* entry = ::readdir(directory)) {
      const std::string_view name = entry->d_name;
      if (name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
          belongsToAnEndedWriter(name.substr(prefix.size()))) {
        ::unlinkat(::dirfd(directory), entry->d_name, 0);
      }
    }
    ::closedir(directory);
  } catch (...) {
    // Out of memory: the files stay until the next call.
  }
}

bool writeFileAtomically(const std::string& path, std::string_view bytes,
                         const AtomicWriteOptions& options) {
  removeStaleTemporaries(path);
  if (kHaveUnnamedFiles && options.unnamedTemporary) {
    const Outcome outcome = replaceThrough(true, path, bytes, options);
    if (outcome != Outcome::kCannotName) return outcome == Outcome::kReplaced;
  }
  return replaceThrough(false, path, bytes, options) == Outcome::kReplaced;
}

#else  // no POSIX file interface

std::optional<std::string> readWholeFile(const std::string& path, std::size_t maxBytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::string content;
  char chunk[65536];
  while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
    content.append(chunk, static_cast<std::size_t>(in.gcount()));
    if (content.size() > maxBytes) return std::nullopt;
  }
  if (in.bad()) return std::nullopt;
  return content;
}

bool writeFileAtomically(const std::string&, std::string_view, const AtomicWriteOptions&) {
  return false;
}

void removeStaleTemporaries(const std::string&) noexcept {}

#endif

}  // namespace tavuro::platform
