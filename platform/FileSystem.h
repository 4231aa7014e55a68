// Whole-file reading with a size bound, and the atomic replacement of a file
// that property lists are written with.
//
// POSIX systems get the full behaviour. Elsewhere reading works through the
// standard streams and `writeFileAtomically` writes nothing and returns
// false, so callers keep their changes in memory only.
#ifndef TAVURO_PLATFORM_FILESYSTEM_H_
#define TAVURO_PLATFORM_FILESYSTEM_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// Files larger than this are refused by default: no configuration file
/// comes near it, and a hostile one must not make us allocate without bound.
inline constexpr std::size_t kMaxFileReadBytes = std::size_t{16} << 20;

/// The whole content of the regular file at `path`; nullopt when it cannot
/// be opened or read, is no regular file, or holds more than `maxBytes`.
[[nodiscard]] std::optional<std::string> readWholeFile(const std::string& path,
                                                       std::size_t maxBytes = kMaxFileReadBytes);

/// The directory part of `path`: everything before its last '/', "/" for a
/// path directly under the root, and "." for a bare file name.
[[nodiscard]] std::string directoryOf(const std::string& path);

/// Points inside `writeFileAtomically` at which a test may stop the process
/// to see what a crash there leaves behind.
enum class AtomicWriteStep {
  kCreated,   // the temporary file exists and is empty
  kFlushed,   // all bytes are written, on disk, with their final owner and mode
  kNamed,     // the temporary file has a name beside the target
  kReplaced,  // the rename is done, the directory not yet flushed
};

/// The write step of `writeFileAtomically`, with the contract of POSIX
/// write(): bytes written, or -1 with errno set.
using WriteFunction = long (*)(int fd, const void* bytes, std::size_t count);

/// Test seams of `writeFileAtomically`; the defaults are the real thing.
struct AtomicWriteOptions {
  /// Writes the bytes; null: the write() system call. A test makes a write
  /// fail part-way with it.
  WriteFunction write = nullptr;
  /// Called at each step, in the order above.
  void (*atStep)(AtomicWriteStep) = nullptr;
  /// False forces the named temporary file that systems without unnamed
  /// ones get, so that both ways are tested on one machine.
  bool unnamedTemporary = true;
};

/// Replaces the file at `path` by `bytes` so that a reader sees the old or
/// the new content and never a mix. Returns false, leaving `path` as it was,
/// when anything fails before the replacement.
///
/// How: the bytes go to a new file in the same directory, mode 0600 while it
/// is written; it is flushed to disk, given the owner, group and permission
/// bits of the file it replaces (0600 and the caller's owner when there was
/// none; the owner only where the process may set it, as root may), renamed
/// over `path`, and then the directory is flushed. A symbolic link at `path`
/// is replaced by the new file, not followed.
///
/// What a crash can leave: where the system offers unnamed files (Linux,
/// `O_TMPFILE`), the new file has no name until just before the rename, so a
/// crash at any earlier step leaves nothing behind; elsewhere, and in the
/// moment between naming and renaming, it can leave one hidden file named
/// ".NAME.tmp-PID-..." beside the target, never with wider permission bits
/// than the target. Each call first removes such files that dead processes
/// left (see `removeStaleTemporaries`), so they never outlive the next
/// successful write.
bool writeFileAtomically(const std::string& path, std::string_view bytes,
                         const AtomicWriteOptions& options = {});

/// Removes the temporary files that interrupted `writeFileAtomically` calls
/// for `path` left beside it, those of processes that no longer run. Other
/// files are never touched. Best effort: failures are ignored.
void removeStaleTemporaries(const std::string& path) noexcept;

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_FILESYSTEM_H_
