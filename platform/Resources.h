// The host's resources outside a phone: the lookup of a named resource in a
// directory that stands for the main resource bundle.
#ifndef TAVURO_PLATFORM_RESOURCES_H_
#define TAVURO_PLATFORM_RESOURCES_H_

#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// The directory of the running executable (Linux: /proc/self/exe, macOS:
/// the loader's executable path); empty where it cannot be determined.
[[nodiscard]] std::string executableDirectory();

/// "<directory>/<name>.<type>" when that is a regular file (or a link to
/// one); nullopt when it is missing, is anything else, or `directory` is
/// empty.
[[nodiscard]] std::optional<std::string> pathForResource(std::string directory,
                                                         std::string_view name,
                                                         std::string_view type);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_RESOURCES_H_
