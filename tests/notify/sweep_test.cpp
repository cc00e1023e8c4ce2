// The delivered-notification sweep: what it removes from Notification Center
// and when. Notifications are placed on the device's record directly, as the
// system would hold them from an earlier moment or run.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "hiding/session_hooks.hpp"
#include "notify/notify_hooks.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace {

using notify::QBNotifyHooks;
using rt::Id;

class Sweep : public qbtest::NotifyWorld {
 protected:
  void put(const std::string& id, const std::string& from, base::Value userInfo,
           std::string thread = "") {
    device.records().deliver({id, from, from, "hi", std::move(thread), std::move(userInfo)});
  }
  std::vector<std::string> held() const {
    std::vector<std::string> ids;
    for (const auto& n : const_cast<sim::Device&>(device).records().delivered())
      ids.push_back(n.identifier);
    return ids;
  }
  void fill() {
    put("a", "alice", base::Dictionary{{"fromUserName", "alice"}});
    put("b-nested", "bob",
        base::Dictionary{{"aps", base::Dictionary{{"custom", base::Dictionary{{"x", "bob"}}}}}});
    put("b-thread", "bob", base::Dictionary{}, "bob");
    put("c", "carol", base::Dictionary{{"fromUserName", "bobby"}});
  }
  void sweep() {
    process->runGuarded([] { QBNotifyHooks::sweepDeliveredNotifications(); });
    process->runDue();
  }
};

TEST_F(Sweep, HiddenInModeZeroRemovesWhatNamesASecretByUserInfoOrThread) {
  launch();
  fill();
  sweep();
  EXPECT_EQ(held(), (std::vector<std::string>{"c", "a"}));
  EXPECT_EQ(countLog("[QB] removed 2 delivered notification(s)"), 1);
}

TEST_F(Sweep, ModesOneAndTwoAndRevealedKeepEverything) {
  launch();
  for (long mode : {1L, 2L}) {
    setMode(mode);
    fill();
    sweep();
    EXPECT_EQ(held().size(), 4u) << "mode " << mode;
  }
  setMode(0);
  config().setUnlocked(true);
  sweep();
  EXPECT_EQ(held().size(), 4u);
}

// The list arrives later; a reveal in between keeps everything.
TEST_F(Sweep, StateIsReadAgainWhenTheListArrives) {
  launch();
  fill();
  process->runGuarded([] { QBNotifyHooks::sweepDeliveredNotifications(); });
  config().setUnlocked(true);
  process->runDue();
  EXPECT_EQ(held().size(), 4u);
}

// Every refresh of the filter while hidden in mode 0 sweeps, the refreshes of
// one turn with one fetch; a reveal the filter never saw (a silent password
// check) changes nothing.
TEST_F(Sweep, FollowsEveryRefreshOfTheFilterWhileHiddenInModeZero) {
  launch();
  auto refresh = [&](int times) {
    process->runGuarded([&] {
      for (int i = 0; i < times; ++i) hiding::QBSessionHooks::refreshFilterCache();
    });
  };
  config().setUnlocked(true);
  fill();
  refresh(1);
  process->runDue();
  EXPECT_EQ(held().size(), 4u) << "revealed";
  config().setUnlocked(false);
  std::size_t lines = device.log().size();
  refresh(3);
  process->runDue();
  EXPECT_EQ(held(), (std::vector<std::string>{"c", "a"}));
  EXPECT_EQ(countLog("[QB] removed 2 delivered notification(s)", lines), 1);
  setMode(1);
  fill();
  refresh(1);
  process->runDue();
  EXPECT_EQ(held().size(), 4u) << "mode 1";
}

TEST_F(Sweep, ColdStartSweepsUnlessTheScheduleShows) {
  for (bool schedule : {false, true}) {
    {
      sim::Process scratch(device);  // the settings file, as a run before this one left it
      core::QBConfig& c = core::QBConfig::shared();
      c.addSecretUser("bob");
      c.setVisibilityControlMode(schedule ? 1 : 0);
      std::string error;
      ASSERT_TRUE(c.setDailyWindows(
          base::Value(base::Array{core::QBConfig::QBWindow(11 * 60, 13 * 60, 0).toValue()}),
          &error));
      c.save();
    }
    fill();
    launchWithLibrary();
    process->runDue();
    if (schedule)
      EXPECT_EQ(held().size(), 4u) << "12:00 is in a show window";
    else
      EXPECT_EQ(held(), (std::vector<std::string>{"c", "a"}));
    process.reset();
  }
}

// As strict as iOS: the list comes after the caller's turn, off the main thread.
TEST_F(Sweep, SimulatedFetchAnswersLaterOffTheMainThread) {
  launch();
  std::atomic<bool> called{false}, onMain{true};
  Id center = rt::send<Id>(rt::getClass("UNUserNotificationCenter"), "currentNotificationCenter");
  rt::send<void>(
      center, "getDeliveredNotificationsWithCompletionHandler:", sim::makeCompletionBlock([&](Id) {
        called = true;
        onMain = sys::isMainThread();
      }));
  EXPECT_FALSE(called);
  process->runDue();
  EXPECT_TRUE(called);
  EXPECT_FALSE(onMain);
}

}  // namespace
