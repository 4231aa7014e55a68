#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using Packages = std::vector<std::shared_ptr<tavuro::ITavuroPackage>>;
using Log = std::vector<std::string>;

// Logs its start; a meddler also empties or grows the host's own list then.
class Package : public tavuro::ITavuroPackage {
 public:
  Package(Log& log, std::string name, Packages* list = nullptr, bool clear = false)
      : log_(log), name_(std::move(name)), list_(list), clear_(clear) {}
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

// The order, duplicates and the callback are the C interface test's; here,
// what the initializer holds and what a package may do to the host's list.
TEST(TavuroInitializer, StartsTheListAsPassedWhateverAPackageDoesToItThenLetsGo) {
  for (const bool clear : {false, true}) {
    Log log;
    Packages list;
    list.push_back(std::make_shared<Package>(log, "meddler", &list, clear));
    list.push_back(std::make_shared<Package>(log, "b"));
    const std::weak_ptr<tavuro::ITavuroPackage> first = list.front(), last = list.back();
    tavuro::TavuroInitializer().initialize(list, [&](auto error) {
      EXPECT_EQ(error, nullptr);
      EXPECT_FALSE(last.expired());  // alive until the initializer is done with it
      log.push_back("callback");
    });
    EXPECT_EQ(log, (Log{"meddler", "b", "callback"}));
    list.clear();
    EXPECT_TRUE(first.expired() && last.expired());
  }
}

}  // namespace
