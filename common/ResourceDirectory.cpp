// The directory that stands for the host's main resource bundle.
#include <cstdlib>
#include <mutex>
#include <string>

#include "TavuroCommon/TavuroCommon.h"
#include "platform/NoDestructor.h"
#include "platform/Resources.h"

namespace tavuro {
namespace {

struct NamedDirectory {
  std::mutex mutex;
  std::string directory;
};

NamedDirectory& namedDirectory() {
  static platform::NoDestructor<NamedDirectory> instance;
  return *instance;
}

}  // namespace

void setResourceDirectory(const std::string& directory) {
  NamedDirectory& named = namedDirectory();
  const std::lock_guard<std::mutex> lock(named.mutex);
  named.directory = directory;
}

std::string resourceDirectory() {
  {
    NamedDirectory& named = namedDirectory();
    const std::lock_guard<std::mutex> lock(named.mutex);
    if (!named.directory.empty()) return named.directory;
  }
  const char* fromEnvironment = std::getenv("TAVURO_RESOURCE_PATH");
  if (fromEnvironment != nullptr && *fromEnvironment != '\0') return fromEnvironment;
  return platform::executableDirectory();
}

}  // namespace tavuro
