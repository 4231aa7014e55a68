// Temporary resource directories, configuration files and a settable clock
// for the credential store's tests.
#ifndef TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_
#define TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "platform/Clock.h"

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

/// A clock that stands still where the test puts it.
class FixedClock : public platform::Clock {
 public:
  explicit FixedClock(double secondsSince1970) { set(secondsSince1970); }
  ~FixedClock() override { platform::setClockForTesting(nullptr); }
  void set(double secondsSince1970) {
    now_ = Instant(std::chrono::duration<double>(secondsSince1970));
    platform::setClockForTesting(this);
  }
  Instant now() const override { return now_; }

 private:
  Instant now_;
};

}  // namespace tavuro::test

#endif  // TAVURO_TESTS_CREDENTIAL_TEST_SUPPORT_H_
