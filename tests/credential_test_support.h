// Temporary resource directories, configuration files and store
// environments for the credential store's tests.
#ifndef TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_
#define TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "common/CredentialStore.h"
#include "platform/Resources.h"

namespace tavuro::test {

/// A fresh, empty directory, removed with everything in it at the end.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tavuro-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
  }
  ~TempDir() { std::filesystem::remove_all(path_, ignored_); }
  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  std::string config() const { return file("TavuroConfig.plist"); }
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(file(name), std::ios::binary) << bytes;
  }
  std::set<std::string> entries() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

 private:
  std::string path_;
  std::error_code ignored_;
};

/// An XML property list whose root dict holds `entries` (key -> value element).
inline std::string plistXml(const std::map<std::string, std::string>& entries) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>";
  for (const auto& [key, element] : entries) xml += "<key>" + key + "</key>" + element;
  return xml + "</dict></plist>\n";
}

/// The environment of a credential store over `dir`'s configuration file,
/// whose clock stands at `*now` seconds since 1970 (the test moves it).
inline detail::CredentialStore::Environment storeEnvironment(const TempDir& dir,
                                                             const double* now = nullptr) {
  detail::CredentialStore::Environment environment = detail::CredentialStore::systemEnvironment();
  environment.configurationPath = [directory = dir.path()] {
    return platform::pathForResource(directory, "TavuroConfig", "plist");
  };
  if (now != nullptr) {
    environment.now = [now] { return Instant(std::chrono::duration<double>(*now)); };
  }
  return environment;
}

}  // namespace tavuro::test

#endif  // TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_
