#include "platform/FileSystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>

#if defined(__unix__) || defined(__APPLE__)
#define TAVURO_POSIX_FILES 1
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <fstream>
#endif

namespace tavuro::platform {
namespace {

std::atomic<WriteFunction> g_writeFunction{nullptr};

}  // namespace

void setWriteFunctionForTesting(WriteFunction function) noexcept {
  g_writeFunction.store(function, std::memory_order_release);
}

#if defined(TAVURO_POSIX_FILES)
namespace {

constexpr int kCloseOnExec = O_CLOEXEC;

long systemWrite(int fd, const void* bytes, std::size_t count) {
  return static_cast<long>(::write(fd, bytes, count));
}

bool writeAll(int fd, std::string_view bytes) {
  WriteFunction write = g_writeFunction.load(std::memory_order_acquire);
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

std::string directoryOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? std::string("/") : path.substr(0, slash);
}

std::string fileNameOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A hidden name beside the target that no other writer picks: the process
// id, a per-process counter and the clock keep concurrent writers apart,
// and O_EXCL catches whatever collision remains.
std::string temporaryNameFor(const std::string& path, unsigned attempt) {
  static std::atomic<std::uint32_t> counter{0};
  const auto ticks = static_cast<unsigned long long>(
      std::chrono::steady_clock::now().time_since_epoch().count());
  std::string name = directoryOf(path);
  if (name.back() != '/') name += '/';
  name += '.' + fileNameOf(path) + ".tmp-" + std::to_string(::getpid()) + '-' +
          std::to_string(counter.fetch_add(1, std::memory_order_relaxed)) + '-' +
          std::to_string(ticks % 1000000007ULL) + '-' + std::to_string(attempt);
  return name;
}

struct TemporaryFile {
  std::string path;
  int fd = -1;
};

std::optional<TemporaryFile> createTemporaryBeside(const std::string& path) {
  for (unsigned attempt = 0; attempt < 16; ++attempt) {
    TemporaryFile file{temporaryNameFor(path, attempt), -1};
    file.fd = ::open(file.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | kCloseOnExec, 0600);
    if (file.fd >= 0) return file;
    if (errno != EEXIST && errno != EINTR) return std::nullopt;
  }
  return std::nullopt;
}

// The permission bits the new file takes over: those of the file it
// replaces, so that a configuration file readable only by its owner stays so.
mode_t permissionBitsFor(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return 0600;
  return info.st_mode & 07777;
}

bool fillAndSeal(int fd, std::string_view bytes, mode_t mode) {
  return writeAll(fd, bytes) && flushToDisk(fd) && ::fchmod(fd, mode) == 0;
}

// Makes the rename itself durable. Some file systems cannot flush a
// directory; the replacement has happened by then, so this is best effort.
void flushDirectory(const std::string& directory) {
  const int fd = ::open(directory.c_str(), O_RDONLY | kCloseOnExec);
  if (fd < 0) return;
  flushToDisk(fd);
  closeDescriptor(fd);
}

}  // namespace

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

bool writeFileAtomically(const std::string& path, std::string_view bytes) {
  std::optional<TemporaryFile> temporary = createTemporaryBeside(path);
  if (!temporary) return false;
  const bool sealed = fillAndSeal(temporary->fd, bytes, permissionBitsFor(path));
  const bool closed = closeDescriptor(temporary->fd);
  if (!sealed || !closed || ::rename(temporary->path.c_str(), path.c_str()) != 0) {
    ::unlink(temporary->path.c_str());
    return false;
  }
  flushDirectory(directoryOf(path));
  return true;
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

bool writeFileAtomically(const std::string&, std::string_view) { return false; }

#endif

}  // namespace tavuro::platform
