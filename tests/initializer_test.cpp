#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::ITavuroPackage;
using Packages = std::vector<std::shared_ptr<ITavuroPackage>>;
using Log = std::vector<std::string>;

// Logs its start; a meddler also empties or grows the host's own list then.
class Package : public ITavuroPackage {
 public:
  Package(Log& log, std::string name, Packages* meddleWith = nullptr, bool clear = false)
      : log_(log), name_(std::move(name)), list_(meddleWith), clear_(clear) {}
  void initialize() override {
    log_.push_back(name_);
    if (list_ && clear_) list_->clear();
    for (int i = 0; list_ && !clear_ && i < 100; ++i) list_->push_back(list_->front());
  }

 private:
  Log& log_;
  std::string name_;
  Packages* list_;
  bool clear_;
};

TEST(TavuroInitializer, StartsPackagesInListOrderThenCallsBackOnceAndLetsGo) {
  const std::vector<std::vector<std::string>> cases{{}, {"a", "b", "c"}, {"a", "b", "a"}};
  for (const auto& names : cases) {
    Log log;
    Packages list;
    std::map<std::string, std::shared_ptr<ITavuroPackage>> byName;
    for (const auto& name : names) {
      auto& package = byName[name];
      if (!package) package = std::make_shared<Package>(log, name);
      list.push_back(package);  // a repeated name is the same object twice
    }
    std::vector<std::weak_ptr<ITavuroPackage>> watched(list.begin(), list.end());
    byName.clear();
    bool errorSeen = false;
    tavuro::TavuroInitializer().initialize(list, [&](std::shared_ptr<tavuro::TavuroError> error) {
      errorSeen = error != nullptr;
      log.push_back("callback");
    });
    list.clear();
    Log expected = names;
    expected.push_back("callback");
    EXPECT_EQ(log, expected);
    EXPECT_FALSE(errorSeen);
    for (const auto& package : watched) EXPECT_TRUE(package.expired());
  }
}

TEST(TavuroInitializer, StartsTheListAsPassedWhateverAPackageDoesToIt) {
  for (const bool clear : {false, true}) {
    Log log;
    Packages list;
    list.push_back(std::make_shared<Package>(log, "meddler", &list, clear));
    list.push_back(std::make_shared<Package>(log, "b"));
    std::weak_ptr<ITavuroPackage> last = list.back();
    int callbacks = 0;
    tavuro::TavuroInitializer().initialize(list, [&](auto) {
      EXPECT_FALSE(last.expired());  // alive until the initializer is done with it
      ++callbacks;
    });
    EXPECT_EQ(log, (Log{"meddler", "b"}));
    EXPECT_EQ(callbacks, 1);
  }
}

}  // namespace
