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
std::optional<std::string> readWholeFile(const std::string& path,
                                         std::size_t maxBytes = kMaxFileReadBytes);

/// Replaces the file at `path` by `bytes` so that a reader sees the old or
/// the new content and never a mix: the bytes go to a new file in the same
/// directory (created exclusively, mode 0600), which is flushed to disk,
/// given the permission bits of the file it replaces (0600 when there was
/// none), renamed over `path`, and then the directory is flushed. On any
/// failure before the rename the new file is removed, `path` is left as it
/// was and the result is false. A symbolic link at `path` is replaced by
/// the new file, not followed.
bool writeFileAtomically(const std::string& path, std::string_view bytes);

/// The write step of `writeFileAtomically`, with the contract of POSIX
/// write(): bytes written, or -1 with errno set.
using WriteFunction = long (*)(int fd, const void* bytes, std::size_t count);

/// Makes `writeFileAtomically` write through `function` (null restores the
/// system call), so that tests can make a write fail part-way.
void setWriteFunctionForTesting(WriteFunction function) noexcept;

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_FILESYSTEM_H_
