#include "platform/Resources.h"

#include "platform/FileSystem.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#include <cstdint>
#elif defined(__linux__)
#include <unistd.h>
#endif

namespace tavuro::platform {
namespace {

#if defined(__linux__)
std::string executablePath() {
  // The link's target length is unknown in advance; grow the buffer until
  // it fits, within a bound no real path reaches.
  for (std::size_t size = 256; size <= (1U << 16); size *= 2) {
    std::vector<char> buffer(size);
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length < 0) return {};
    if (static_cast<std::size_t>(length) < buffer.size()) {
      return std::string(buffer.data(), static_cast<std::size_t>(length));
    }
  }
  return {};
}
#elif defined(__APPLE__)
std::string executablePath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::vector<char> buffer(size + 1, '\0');
  if (_NSGetExecutablePath(buffer.data(), &size) != 0) return {};
  return std::string(buffer.data());
}
#else
std::string executablePath() {
  return {};
}
#endif

bool isRegularFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

std::string executableDirectory() {
  // An unknown executable gives no directory rather than the working one.
  const std::string path = executablePath();
  return path.empty() ? std::string() : directoryOf(path);
}

std::optional<std::string> pathForResource(std::string directory, std::string_view name,
                                           std::string_view type) {
  std::string path = std::move(directory);
  if (path.empty()) return std::nullopt;
  if (path.back() != '/') path += '/';
  path.append(name).append(".").append(type);
  if (!isRegularFile(path)) return std::nullopt;
  return path;
}

}  // namespace tavuro::platform
