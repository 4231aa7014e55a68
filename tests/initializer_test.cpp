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

}  // namespace
