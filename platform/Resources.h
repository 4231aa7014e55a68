// The host's resources outside a phone: a directory standing for the main
// resource bundle, and the lookup of a named resource in it.
#ifndef TAVURO_PLATFORM_RESOURCES_H_
#define TAVURO_PLATFORM_RESOURCES_H_

#include <optional>
#include <string>
#include <string_view>

namespace tavuro::platform {

/// The directory of the running executable (Linux: /proc/self/exe, macOS:
/// the loader's executable path); empty where it cannot be determined.
std::string executableDirectory();

/// "<resourceDirectory()>/<name>.<type>" when that is a regular file (or a
/// link to one); nullopt when it is missing, is anything else, or no
/// resource directory can be determined.
std::optional<std::string> pathForResource(std::string_view name, std::string_view type);

}  // namespace tavuro::platform

#endif  // TAVURO_PLATFORM_RESOURCES_H_
