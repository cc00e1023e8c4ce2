// The two drivers that change visibility without the user asking: the daily
// schedule and the auto-lock when the app leaves the foreground.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "support/host_world.hpp"
#include "hiding/session_hooks.hpp"
#include "triggers/auto_lock.hpp"
#include "triggers/schedule.hpp"
#include "host/runtime_toolkit.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/notifications.hpp"

namespace {

using core::QBConfig;
using triggers::QBAutoLock;
using triggers::QBSchedule;

class Drivers : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : {"a", "S", "b"}) addFriend(u);
    host.model.sessions = {"a", "S", "b"};
  }
  void launchInScheduleMode(int hour, int minute) {
    device.setLocalTime(hour, minute);
    launchWithLibrary();
    QBConfig& c = QBConfig::shared();
    c.addSecretUser("S");
    c.setVisibilityControlMode(1);
  }
};

TEST_F(Drivers, AScheduleDayRevealsAtEightAndHidesAtTen) {
  launchInScheduleMode(7, 59);
  wait(2);  // the first apply, 1.2 s after start-up
  EXPECT_FALSE(QBConfig::shared().unlocked());
  EXPECT_EQ(countLog("[QB] schedule apply"), 0) << "already hidden: no log, no reload";
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
  wait(60);  // the 30 s ticks cross 08:00
  EXPECT_TRUE(QBConfig::shared().unlocked());
  EXPECT_EQ(countLog("[QB] schedule apply → show"), 1);
  wait(1);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}))
      << "revealed without authentication";
  device.setLocalTime(21, 59);
  wait(31);
  EXPECT_TRUE(QBConfig::shared().unlocked());
  wait(60);
  EXPECT_FALSE(QBConfig::shared().unlocked());
  EXPECT_EQ(countLog("[QB] schedule apply → hide"), 1);
  wait(1);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(Drivers, WindowsAcrossMidnightAndHideWindows) {
  launchInScheduleMode(23, 0);
  std::string m;
  ASSERT_TRUE(
      QBConfig::shared().setDailyWindows(core::windowsValue({{1320, 360, 0}, {360, 480, 1}}), &m))
      << m;
  QBSchedule::applyNow();
  EXPECT_TRUE(QBConfig::shared().unlocked()) << "23:00 is inside 22:00-06:00 show";
  device.setLocalTime(6, 30);
  QBSchedule::applyNow();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "a hide window";
  device.setLocalTime(12, 0);
  QBSchedule::applyNow();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "outside every window: hidden";
}

TEST_F(Drivers, TheScheduleStaysOutOfManualModeAndOfAuthentication) {
  device.setLocalTime(9, 0);
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  wait(100);
  EXPECT_FALSE(c.unlocked()) << "manual mode: the schedule does nothing";
  EXPECT_EQ(countLog("[QB] schedule apply"), 0);
  c.setVisibilityControlMode(1);
  c.setSuppressSessionApply(true);
  wait(31);
  EXPECT_FALSE(c.unlocked()) << "frozen while an authentication screen is up";
  c.setSuppressSessionApply(false);
  wait(31);
  EXPECT_TRUE(c.unlocked());
}

// With no secrets the schedule has nothing to show or hide: whatever the
// windows say, it changes nothing and reloads nothing.
TEST_F(Drivers, WithoutSecretsTheScheduleAppliesNothing) {
  device.setLocalTime(12, 0);
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.setVisibilityControlMode(1);
  wait(2);
  std::size_t before = device.log().size();
  c.setUnlocked(true);
  QBSchedule::applyNow();
  device.setLocalTime(23, 0);  // outside the default 08:00-22:00 window
  QBSchedule::applyNow();
  EXPECT_TRUE(c.unlocked());
  c.setUnlocked(false);
  device.setLocalTime(12, 0);
  QBSchedule::applyNow();
  EXPECT_FALSE(c.unlocked());
  EXPECT_EQ(countLog("[QB] schedule apply", before), 0);
  EXPECT_EQ(countLog("[QB] softReload", before), 0);
}

TEST_F(Drivers, LeavingTheForegroundLocksOnceForABurstOfNotifications) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  c.setUnlocked(true);
  wait(5);
  std::size_t before = device.log().size();
  ASSERT_TRUE(process->enterBackground());  // four notifications at once
  EXPECT_FALSE(c.unlocked());
  EXPECT_EQ(countLog("[QB] auto-lock ", before), 1);
  EXPECT_EQ(countLog("[QB] auto-lock UISceneWillDeactivateNotification", before), 1)
      << "the first of them";
}

TEST_F(Drivers, LeavingHidesTheListsOnScreenAtOnceAndOncePerDeparture) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  c.setUnlocked(true);
  wait(5);
  sim::currentProcess().runGuarded([&] { host.sessionsChanged(); });
  ASSERT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  // One reload pass logs once per container that reaches the main list.
  std::size_t mark = device.log().size();
  hiding::QBSessionHooks::softReloadMainFrameForce(true);
  long perPass = countLog("[QB] softReload main force=1", mark);
  ASSERT_GT(perPass, 0);
  for (int departure = 0; departure < 2; ++departure) {
    std::size_t before = device.log().size();
    ASSERT_TRUE(process->enterBackground());
    EXPECT_EQ(host.lastSnapshot().mainRows, (std::vector<std::string>{"a", "b"}))
        << "departure " << departure;
    EXPECT_EQ(countLog("[QB] softReload main force=1", before), perPass)
        << "the application's and the scene's notifications of one departure reload once";
    ASSERT_TRUE(process->enterForeground());
    wait(3);
    c.setUnlocked(true);
    wait(1);
  }
  // In schedule mode a window that shows the secrets keeps showing them, but
  // not in the picture; back in the app, they are on the list again.
  c.setVisibilityControlMode(1);
  c.setDailyWindowsField({{0, 1439, 0}});
  c.setUnlocked(false);
  wait(31);
  ASSERT_TRUE(c.unlocked());
  ASSERT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  ASSERT_TRUE(process->enterBackground());
  EXPECT_EQ(host.lastSnapshot().mainRows, (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(c.unlocked()) << "the schedule's state is not the picture's";
  ASSERT_TRUE(process->enterForeground());
  wait(1);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S", "b"}));
  // The contacts list on top is pictured without the secret too.
  sim::currentProcess().runGuarded([&] { host.selectTab(1); });
  wait(1);
  ASSERT_TRUE(process->enterBackground());
  EXPECT_EQ(host.lastSnapshot().screen, "contacts");
  EXPECT_FALSE(host.lastSnapshot().rows.empty());
  for (const std::string& row : host.lastSnapshot().rows) EXPECT_NE(row, "S");
}

TEST_F(Drivers, AutoLockDebounceAndItsConditions) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  QBAutoLock::autoLockWithReason("x");
  EXPECT_EQ(countLog("[QB] auto-lock x"), 0) << "no secrets";
  c.addSecretUser("S");
  c.setUnlocked(true);
  QBAutoLock::autoLockWithReason("first");
  EXPECT_FALSE(c.unlocked());
  c.setUnlocked(true);
  wait(0.5);
  QBAutoLock::autoLockWithReason("too soon");
  EXPECT_TRUE(c.unlocked());
  wait(0.4);
  QBAutoLock::autoLockWithReason("later");
  EXPECT_FALSE(c.unlocked());
  wait(1);
  c.setUnlocked(true);
  c.setSuppressAutoLock(true);
  QBAutoLock::autoLockWithReason("during authentication");
  EXPECT_TRUE(c.unlocked());
  c.setSuppressAutoLock(false);
  c.setVisibilityControlMode(1);
  QBAutoLock::autoLockWithReason("schedule mode");
  EXPECT_TRUE(c.unlocked());
  EXPECT_EQ(countLog("[QB] auto-lock first"), 1);
  EXPECT_EQ(countLog("[QB] auto-lock later"), 1);
  EXPECT_EQ(countLog("[QB] auto-lock too soon") + countLog("[QB] auto-lock during") +
                countLog("[QB] auto-lock schedule"),
            0);
}

// The application notifications alone lock, as on a system without scenes.
TEST_F(Drivers, AutoLockFromTheApplicationNotificationsAlone) {
  launchWithLibrary();
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  for (const char* name : {sys::kWillResignActive, sys::kDidEnterBackground}) {
    c.setUnlocked(true);
    wait(1);
    process->post(name);
    process->runDue();
    EXPECT_FALSE(c.unlocked()) << name;
    EXPECT_EQ(countLog(std::string("[QB] auto-lock ") + name), 1);
  }
}

// Coming back re-evaluates the schedule at once, without waiting for a tick.
TEST_F(Drivers, TheScheduleIsAppliedOnReturnAndOnBecomingActive) {
  launchInScheduleMode(7, 0);
  wait(2);
  EXPECT_FALSE(QBConfig::shared().unlocked());
  device.setLocalTime(9, 0);
  process->post(sys::kWillEnterForeground);
  process->runDue();
  EXPECT_TRUE(QBConfig::shared().unlocked());
  device.setLocalTime(23, 0);
  process->post(sys::kDidBecomeActive);
  process->runDue();
  EXPECT_FALSE(QBConfig::shared().unlocked());
}

// Nothing in the system calls it; it shows the message and takes it away again.
TEST_F(Drivers, FlashToastShowsAndRemovesItself) {
  launchWithLibrary();
  rt::Id window = host::QBRuntime::keyWindow();
  std::size_t before = sim::viewState(window)->subviews.size();
  triggers::QBAutoLock::flashToast("");
  EXPECT_EQ(sim::viewState(window)->subviews.size(), before) << "an empty message shows nothing";
  triggers::QBAutoLock::flashToast("已隐藏");
  ASSERT_EQ(sim::viewState(window)->subviews.size(), before + 1);
  EXPECT_EQ(sim::viewState(sim::viewState(window)->subviews.back())->text, "已隐藏");
  wait(1.5);
  EXPECT_EQ(sim::viewState(window)->subviews.size(), before) << "gone after fading out";
}

}  // namespace
