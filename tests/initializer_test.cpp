#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::ITavuroPackage;
using tavuro::TavuroError;
using tavuro::TavuroInitializer;

// Records every start-up event, packages and callback alike, in one log so
// that the order between them is visible.
struct Log {
  std::vector<std::string> events;
};

class RecordingPackage : public ITavuroPackage {
 public:
  RecordingPackage(Log& log, std::string name) : log_(log), name_(std::move(name)) {}
  void initialize() override { log_.events.push_back(name_); }

 private:
  Log& log_;
  std::string name_;
};

TEST(TavuroInitializer, StartsPackagesInListOrderThenCallsBackOnce) {
  struct Case {
    std::vector<std::string> packages;
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {{}, {"callback"}},
      {{"a", "b", "c"}, {"a", "b", "c", "callback"}},
      {{"a", "b", "a"}, {"a", "b", "a", "callback"}},
  };
  for (const Case& c : cases) {
    Log log;
    std::vector<std::shared_ptr<ITavuroPackage>> list;
    std::map<std::string, std::shared_ptr<ITavuroPackage>> byName;
    for (const auto& name : c.packages) {
      auto& package = byName[name];
      if (!package) package = std::make_shared<RecordingPackage>(log, name);
      list.push_back(package);  // a repeated name is the same object twice
    }
    bool errorSeen = false;
    TavuroInitializer().initialize(list, [&](std::shared_ptr<TavuroError> error) {
      errorSeen = error != nullptr;
      log.events.push_back("callback");
    });
    EXPECT_EQ(log.events, c.expected);
    EXPECT_FALSE(errorSeen);
  }
}

TEST(TavuroInitializer, KeepsNoStateBetweenCalls) {
  Log log;
  auto package = std::make_shared<RecordingPackage>(log, "p");
  TavuroInitializer initializer;
  tavuro::ITavuroInitializer& asInterface = initializer;
  int firstCallbacks = 0;
  int secondCallbacks = 0;
  initializer.initialize({package}, [&](auto) { ++firstCallbacks; });
  asInterface.initialize({package}, [&](auto) { ++secondCallbacks; });
  EXPECT_EQ(log.events, (std::vector<std::string>{"p", "p"}));
  EXPECT_EQ(firstCallbacks, 1);
  EXPECT_EQ(secondCallbacks, 1);
}

TEST(TavuroInitializer, ReleasesPackagesWhenDone) {
  Log log;
  auto package = std::make_shared<RecordingPackage>(log, "p");
  std::weak_ptr<ITavuroPackage> watch = package;
  {
    std::vector<std::shared_ptr<ITavuroPackage>> list{std::move(package)};
    TavuroInitializer().initialize(list, [](auto) {});
  }
  EXPECT_TRUE(watch.expired());
}

// A package that changes the host's own list while it is being started.
class MeddlingPackage : public ITavuroPackage {
 public:
  MeddlingPackage(Log& log, std::vector<std::shared_ptr<ITavuroPackage>>& hostList, bool clear)
      : log_(log), hostList_(hostList), clear_(clear) {}
  void initialize() override {
    log_.events.push_back("meddler");
    if (clear_) {
      hostList_.clear();
    } else {
      for (int i = 0; i < 100; ++i) hostList_.push_back(hostList_.front());  // reallocates
    }
  }

 private:
  Log& log_;
  std::vector<std::shared_ptr<ITavuroPackage>>& hostList_;
  bool clear_;
};

TEST(TavuroInitializer, StartsTheListAsPassedWhateverAPackageDoesToIt) {
  for (const bool clear : {false, true}) {
    Log log;
    std::vector<std::shared_ptr<ITavuroPackage>> list;
    list.push_back(std::make_shared<MeddlingPackage>(log, list, clear));
    list.push_back(std::make_shared<RecordingPackage>(log, "b"));
    std::weak_ptr<ITavuroPackage> last = list.back();
    int callbacks = 0;
    TavuroInitializer().initialize(list, [&](auto) {
      EXPECT_FALSE(last.expired());  // alive until the initializer is done with it
      ++callbacks;
    });
    EXPECT_EQ(log.events, (std::vector<std::string>{"meddler", "b"}));
    EXPECT_EQ(callbacks, 1);
  }
}

}  // namespace
