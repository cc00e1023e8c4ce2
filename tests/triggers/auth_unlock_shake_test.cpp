// Authentication, the hide and reveal actions, and the shake filter: the
// rules that are easy to get wrong.
#include <gtest/gtest.h>

#include <optional>

#include "core/config.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"
#include "triggers/auth.hpp"
#include "triggers/shake_hooks.hpp"
#include "triggers/unlock.hpp"

namespace {

using core::QBConfig;
using triggers::QBAuth;
using triggers::QBShakeHooks;
using triggers::QBUnlock;

class Triggers : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : {"a", "S"}) addFriend(u);
    host.model.sessions = {"a", "S"};
    launchWithLibrary();
    wait(3);
  }
  rt::Id alert() {
    rt::Id top = sim::topController();
    return top && sim::alertState(top) ? top : nullptr;
  }
  void press(const char* title) {
    ASSERT_NE(alert(), nullptr);
    process->runGuarded([&] { sim::pressAlertAction(alert(), title); });
  }
  // Records each completion with the time it ran and whether `unlocked` was set then.
  struct Outcome {
    int calls = 0;
    bool passed = false;
    double at = 0;
    bool unlockedThen = false;
  };
  // The user holds a finger on the main list's navigation bar.
  void longPress() {
    rt::Id nav = rt::send<rt::Id>(host.mainFrame(), "navigationController");
    rt::Id bar = rt::send<rt::Id>(nav, "navigationBar");
    for (rt::Id g : sim::viewState(bar)->gestureRecognizers) {
      sim::GestureState* gs = sim::gestureState(g);
      if (!rt::isKindOf(g, "UILongPressGestureRecognizer") || !gs->action) continue;
      gs->state = 1;
      process->runGuarded([&] { gs->action(g); });
      gs->state = 0;
    }
  }
  // Password accepted: the completion runs 0.45 s after the press.
  void revealWithPassword(const char* source) {
    QBUnlock::showWithAuthFrom(source);
    process->runDue();
    sim::typeIntoAlert(alert(), "7351");
    press("确定");
    wait(0.45);
  }
  std::vector<double> forcedReloadTimes(std::size_t from) const {
    std::vector<double> out;
    for (std::size_t i = from; i < device.log().size(); ++i)
      if (device.log()[i].text.find("[QB] softReload main force=1") != std::string::npos &&
          (out.empty() || out.back() != device.log()[i].elapsed))
        out.push_back(device.log()[i].elapsed);
    return out;
  }
  triggers::AuthCompletion recorder(Outcome& o) {
    return [this, &o](bool passed) {
      ++o.calls;
      o.passed = passed;
      o.at = device.elapsed();
      o.unlockedThen = QBConfig::shared().unlocked();
      EXPECT_TRUE(sys::isMainThread());
    };
  }
};

TEST_F(Triggers, PasswordAlertCompletesOnceAfterTheDelay) {
  Outcome o;
  QBAuth::authenticateWithMode(2, "", recorder(o));  // any mode but 1 is the password
  EXPECT_EQ(alert(), nullptr) << "shown from the main queue, not at once";
  process->runDue();
  ASSERT_NE(alert(), nullptr);
  sim::AlertState& a = *sim::alertState(alert());
  EXPECT_EQ(a.title, "验证身份");
  EXPECT_EQ(a.message, "输入口令");
  ASSERT_EQ(a.fieldSpecs.size(), 1u);
  EXPECT_TRUE(a.fieldSpecs[0].secure);
  EXPECT_EQ(a.fieldSpecs[0].placeholder, "口令");
  ASSERT_EQ(a.actions.size(), 2u);
  EXPECT_EQ(a.actions[0].title, "取消");
  EXPECT_TRUE(QBConfig::shared().suppressAutoLock() && QBConfig::shared().suppressSessionApply());
  sim::typeIntoAlert(alert(), "7351");
  double pressedAt = device.elapsed();
  press("确定");
  EXPECT_EQ(o.calls, 0);
  wait(0.44);
  EXPECT_EQ(o.calls, 0);
  wait(0.02);
  EXPECT_EQ(o.calls, 1);
  EXPECT_TRUE(o.passed);
  EXPECT_NEAR(o.at - pressedAt, 0.45, 1e-9);
  wait(5);
  EXPECT_EQ(o.calls, 1) << "exactly once";
}

TEST_F(Triggers, CancelFailsAtOnceAndAWrongPasswordAfterTheDelay) {
  Outcome cancel, wrong;
  QBAuth::askPassword(recorder(cancel));
  press("取消");
  EXPECT_EQ(cancel.calls, 1);
  EXPECT_FALSE(cancel.passed);
  QBAuth::askPassword(recorder(wrong));
  sim::typeIntoAlert(alert(), "0000");
  press("确定");
  wait(0.5);
  EXPECT_EQ(wrong.calls, 1);
  EXPECT_FALSE(wrong.passed);
  EXPECT_FALSE(QBConfig::shared().unlocked());
}

TEST(TriggersNoWindow, NoKeyWindowFailsAtOnce) {
  sim::Device device;
  sim::Process process(device);
  std::optional<bool> result;
  QBAuth::askPassword([&](bool ok) { result = ok; });
  ASSERT_TRUE(result.has_value()) << "no waiting for a screen that is not there";
  EXPECT_FALSE(*result);
}

TEST_F(Triggers, APasswordAlertThatNeverShowsOrIsTakenAwayFailsExactlyOnce) {
  Outcome refused;
  rt::Id busy = QBAuth::topVC();
  sim::controllerState(busy)->inTransition = true;
  QBAuth::authenticateWithMode(0, "", recorder(refused));
  wait(1);
  EXPECT_EQ(alert(), nullptr);
  EXPECT_EQ(refused.calls, 1);
  EXPECT_FALSE(refused.passed);
  sim::controllerState(busy)->inTransition = false;

  Outcome removed;
  QBAuth::authenticateWithMode(0, "", recorder(removed));
  wait(0.1);
  ASSERT_NE(alert(), nullptr);
  process->runGuarded(
      [&] { sim::dismissPresented(alert()); });  // the host dismisses what is presented
  wait(1);
  EXPECT_EQ(removed.calls, 1);
  EXPECT_FALSE(removed.passed);

  Outcome pressed;
  QBAuth::authenticateWithMode(0, "", recorder(pressed));
  wait(0.1);
  press("取消");
  wait(1);
  EXPECT_EQ(pressed.calls, 1) << "a button's own dismissal is not a removal";
}

TEST_F(Triggers, ARevealWhoseAlertCannotShowLeavesNothingHeld) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  sim::controllerState(QBAuth::topVC())->inTransition = true;
  QBUnlock::showWithAuthFrom("test");
  EXPECT_EQ(countLog("[QB] show auth from test"), 1);
  wait(1);
  EXPECT_FALSE(c.suppressAutoLock());
  EXPECT_FALSE(c.suppressSessionApply());
  sim::controllerState(QBAuth::topVC())->inTransition = false;
  QBUnlock::showWithAuthFrom("test");  // the next reveal is not blocked by a stale one
  wait(0.1);
  EXPECT_NE(alert(), nullptr);
}

TEST_F(Triggers, BiometricSuccessSetsUnlockedBeforeTheCompletion) {
  Outcome o;
  QBAuth::authenticateWithMode(1, "", recorder(o));
  ASSERT_TRUE(process->platform().biometricReply);
  EXPECT_EQ(process->platform().biometricReason, "验证身份") << "an empty reason";
  auto reply = process->platform().biometricReply;
  process->platform().biometricReply = nullptr;
  reply(true);
  EXPECT_EQ(o.calls, 0) << "moved to the main queue";
  process->runDue();
  EXPECT_EQ(o.calls, 1);
  EXPECT_TRUE(o.passed);
  EXPECT_TRUE(o.unlockedThen);
}

// The panel's prompt gives its own reason and no fallback button of the
// system's: a failure is a failure.
TEST_F(Triggers, ThePanelsBiometricPromptHasItsReasonAndNoFallbackButton) {
  QBConfig::shared().setPanelAuthMode(1);
  Outcome o;
  QBAuth::authenticateForPanel(recorder(o));
  ASSERT_TRUE(process->platform().biometricReply);
  EXPECT_EQ(process->platform().biometricReason, "验证以进入密友控制台");
  EXPECT_EQ(process->platform().biometricFallbackTitle, std::optional<std::string>(""));
}

TEST_F(Triggers, BiometricFailureHasNoPasswordFallback) {
  Outcome o;
  QBAuth::authenticateForReveal(recorder(o));  // reveal mode 0: the password
  process->runDue();
  EXPECT_NE(alert(), nullptr);
  press("取消");
  QBConfig::shared().setRevealAuthMode(1);
  Outcome b;
  QBAuth::authenticateForReveal(recorder(b));
  EXPECT_EQ(process->platform().biometricReason, "验证以显示密友");
  auto reply = process->platform().biometricReply;
  process->platform().biometricReply = nullptr;
  reply(false);
  wait(1);
  EXPECT_EQ(b.calls, 1);
  EXPECT_FALSE(b.passed);
  EXPECT_EQ(alert(), nullptr) << "no password alert after a failed check";
}

TEST_F(Triggers, NoBiometricHardwareAsksForThePassword) {
  device.biometrics = sim::Biometrics::None;
  Outcome o;
  QBAuth::authenticateForPanel(recorder(o));
  QBConfig::shared().setPanelAuthMode(1);
  Outcome p;
  QBAuth::authenticateForPanel(recorder(p));
  process->runDue();
  ASSERT_NE(alert(), nullptr);
  sim::typeIntoAlert(alert(), "7351");
  press("确定");
  wait(1);
  EXPECT_EQ(p.calls + o.calls, 1)
      << "one alert on screen at a time; the other presentation was refused";
}

TEST_F(Triggers, RevealDebounceAndOneAtATime) {
  QBConfig& c = QBConfig::shared();
  QBUnlock::showWithAuthFrom("first");
  EXPECT_EQ(countLog("[QB] show auth from"), 0) << "no secrets: nothing, not even a log line";
  c.addSecretUser("S");
  QBUnlock::showWithAuthFrom("first");
  QBUnlock::showWithAuthFrom("second");
  wait(1);
  QBUnlock::showWithAuthFrom("third");  // the first authentication is still on screen
  EXPECT_EQ(countLog("[QB] show auth from first"), 1);
  EXPECT_EQ(countLog("[QB] show auth from second") + countLog("[QB] show auth from third"), 0);
  press("取消");
  EXPECT_FALSE(c.unlocked());
  EXPECT_FALSE(c.suppressAutoLock());
  EXPECT_FALSE(c.suppressSessionApply());
  c.setVisibilityControlMode(1);
  QBUnlock::showWithAuthFrom("schedule");
  EXPECT_EQ(countLog("[QB] show auth from schedule"), 0);
}

TEST_F(Triggers, AFailedRevealStillDebouncesTheNextRequest) {
  QBConfig::shared().addSecretUser("S");
  QBUnlock::showWithAuthFrom("first");
  process->runDue();
  press("取消");  // fails at once
  wait(0.7);
  QBUnlock::showWithAuthFrom("too soon");
  EXPECT_EQ(countLog("[QB] show auth from too soon"), 0) << "0.7 s after the last accepted request";
  wait(0.11);
  QBUnlock::showWithAuthFrom("later");
  EXPECT_EQ(countLog("[QB] show auth from later"), 1);
}

// After the table phases of the reveal, one more forced reload lands when the
// 2.0 s settle ends, but only while the secrets are still shown.
TEST_F(Triggers, TheLateReloadAfterARevealOnlyWhileStillRevealed) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  std::size_t before = device.log().size();
  revealWithPassword("test");
  double success = device.elapsed();
  wait(3);
  std::vector<double> times = forcedReloadTimes(before);
  ASSERT_FALSE(times.empty());
  EXPECT_NEAR(times.back() - success, 2.0, 1e-9);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a", "S"}));

  QBUnlock::hideNow();
  wait(1);
  before = device.log().size();
  revealWithPassword("again");
  success = device.elapsed();
  wait(1.5);
  QBUnlock::hideNow();
  std::size_t hidden = device.log().size();
  wait(1.5);
  for (double t : forcedReloadTimes(hidden))
    EXPECT_LT(t - success, 1.9) << "no late reload once hidden again";
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"a"}));
}

TEST_F(Triggers, EachTriggerSwitchTurnsItsTriggerOff) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  c.setShakeHideEnabled(false);
  c.setUnlocked(true);
  QBShakeHooks::handleShake();
  EXPECT_TRUE(c.unlocked()) << "shake-to-hide off";
  c.setShakeHideEnabled(true);
  c.setShakeShowEnabled(false);
  c.setUnlocked(false);
  wait(1);
  QBShakeHooks::handleShake();
  EXPECT_EQ(alert(), nullptr) << "shake-to-show off";
  c.setShakeShowEnabled(true);
  wait(1);
  QBShakeHooks::handleShake();
  process->runDue();
  EXPECT_NE(alert(), nullptr) << "both on again: the shake that follows asks";
  press("取消");

  c.setLongPressUnlockEnabled(false);
  wait(1);
  longPress();
  process->runDue();
  EXPECT_EQ(alert(), nullptr) << "long press off, though the recognizer is on the bar";
  c.setUnlocked(true);
  longPress();
  EXPECT_TRUE(c.unlocked());
  c.setLongPressUnlockEnabled(true);
  longPress();
  EXPECT_FALSE(c.unlocked()) << "on again: the press hides";
  EXPECT_EQ(countLog("[QB] show auth from shake"), 1);
  EXPECT_EQ(countLog("[QB] show auth from longPress"), 0);
}

TEST_F(Triggers, ASuccessfulRevealHoldsAutoLockForTwoSeconds) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  QBUnlock::showWithAuthFrom("test");
  process->runDue();
  sim::typeIntoAlert(alert(), "7351");
  press("确定");
  wait(0.45);
  EXPECT_TRUE(c.unlocked());
  EXPECT_FALSE(c.suppressSessionApply());
  EXPECT_TRUE(c.suppressAutoLock());
  wait(1.99);
  EXPECT_TRUE(c.suppressAutoLock());
  wait(0.02);
  EXPECT_FALSE(c.suppressAutoLock());
  QBUnlock::hideNow();
  EXPECT_FALSE(c.unlocked()) << "hiding needs no authentication";
  EXPECT_FALSE(process->platform().haptics.empty());
}

TEST_F(Triggers, TheLongPressRecognizerIsAttachedOncePerView) {
  QBConfig::shared().addSecretUser("S");
  process->runGuarded([&] { host.openChat("a"); });
  process->runDue();
  process->runGuarded([&] { host.popToRoot(); });
  process->runGuarded([&] { host.openChat("a"); });
  process->runDue();
  rt::Id nav = rt::send<rt::Id>(sim::topController(), "navigationController");
  rt::Id bar = rt::send<rt::Id>(nav, "navigationBar");
  long presses = 0;
  for (rt::Id g : sim::viewState(bar)->gestureRecognizers)
    if (rt::isKindOf(g, "UILongPressGestureRecognizer")) {
      ++presses;
      EXPECT_DOUBLE_EQ(sim::gestureState(g)->minimumPressDuration, 0.7);
      EXPECT_FALSE(sim::gestureState(g)->cancelsTouchesInView);
    }
  EXPECT_EQ(presses, 1) << "the main list and the chats share the bar; one recognizer";
}

// The shake filter on magnitudes, fed directly.
TEST_F(Triggers, ShakeFilterThresholds) {
  QBConfig::shared().addSecretUser("S");
  auto shakesAfter = [&](std::initializer_list<double> samples) {
    wait(1);
    std::size_t before = device.log().size();
    for (double m : samples) QBShakeHooks::sample(m);
    process->runDue();
    long n = countLog("[QB] show auth from shake", before);
    if (alert()) press("取消");
    return n;
  };
  EXPECT_EQ(shakesAfter({0.02, 0.03, 0.05}), 0);
  EXPECT_EQ(shakesAfter({0.02, 0.11}), 1) << "a loud sample";
  EXPECT_EQ(shakesAfter({0.089, 0.0}), 1) << "a fall of 0.089 is a jump";
  EXPECT_EQ(shakesAfter({0.01, 0.085}), 0) << "below both thresholds";
}

// Without device motion the raw accelerometer is read: gravity, about 1 g at
// rest in any orientation, is taken off the length.
class AccelerometerOnly : public Triggers {
 protected:
  void SetUp() override {
    device.motion = sim::MotionSensors::Accelerometer;
    Triggers::SetUp();
  }
  void feed(double x, double y, double z) {
    auto handler = process->platform().motionHandler;
    ASSERT_TRUE(handler);
    handler(x, y, z);
    process->runDue();
  }
};

TEST_F(AccelerometerOnly, TheMagnitudeIsTheDistanceFromOneG) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  ASSERT_TRUE(process->platform().motionFromAccelerometer);
  EXPECT_DOUBLE_EQ(process->platform().motionInterval, 0.04);
  c.setUnlocked(true);
  for (int i = 0; i < 3; ++i) feed(0, 0.6, -0.8);
  feed(0, 0, -1.05);
  EXPECT_TRUE(c.unlocked()) << "a phone at rest, tilted or flat, is quiet";
  feed(0, 0, -0.8);
  EXPECT_FALSE(c.unlocked()) << "0.2 g below gravity";
  c.setUnlocked(true);
  wait(1);
  feed(0, 0, -0.8);
  EXPECT_FALSE(c.unlocked()) << "held at 0.2 g below gravity: loud, not a jump";
}

// The panel holds the session apply but not the auto-lock: a long press does
// nothing while it is up. An authentication holds both, and the press acts.
TEST_F(Triggers, ALongPressIsIgnoredWhileOnlyTheSessionApplyIsHeld) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  c.setSuppressSessionApply(true);
  longPress();
  process->runDue();
  EXPECT_EQ(alert(), nullptr);
  c.setUnlocked(true);
  longPress();
  EXPECT_TRUE(c.unlocked()) << "no hide either";
  c.setSuppressAutoLock(true);
  longPress();
  EXPECT_FALSE(c.unlocked()) << "both held: the press hides";
  EXPECT_EQ(countLog("[QB] show auth from longPress"), 0);
}

// A shake reveals and hides only in manual mode, and only with secrets.
TEST_F(Triggers, AShakeDoesNothingInScheduleModeOrWithoutSecrets) {
  QBConfig& c = QBConfig::shared();
  QBShakeHooks::handleShake();
  process->runDue();
  EXPECT_EQ(alert(), nullptr) << "no secrets: nothing to reveal";
  c.setUnlocked(true);
  wait(1);
  QBShakeHooks::handleShake();
  EXPECT_TRUE(c.unlocked()) << "no secrets: nothing to hide";
  c.addSecretUser("S");
  c.setVisibilityControlMode(1);
  wait(1);
  QBShakeHooks::handleShake();
  EXPECT_TRUE(c.unlocked()) << "schedule mode: the windows decide";
  c.setUnlocked(false);
  wait(1);
  QBShakeHooks::handleShake();
  process->runDue();
  EXPECT_EQ(alert(), nullptr);
  EXPECT_EQ(countLog("[QB] show auth"), 0);
  // Ignored outright: the next shake in manual mode is not held back by it.
  c.setUnlocked(true);
  c.setVisibilityControlMode(0);
  wait(0.3);
  QBShakeHooks::handleShake();
  EXPECT_FALSE(c.unlocked());
}

// A phone without motion sensors: the shake is simply never heard, and the
// other triggers work.
class NoMotionSensors : public Triggers {
 protected:
  void SetUp() override {
    device.motion = sim::MotionSensors::None;
    Triggers::SetUp();
  }
};

TEST_F(NoMotionSensors, NoShakeIsHeardAndTheLongPressStillWorks) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  EXPECT_FALSE(process->platform().motionHandler) << "no updates were started";
  EXPECT_EQ(countLog("[QB] shake ex"), 0);
  longPress();
  process->runDue();
  EXPECT_NE(alert(), nullptr);
  EXPECT_EQ(countLog("[QB] show auth from longPress"), 1);
}

TEST_F(Triggers, ShakesAreSpacedAndIgnoredWhileTheAlertIsUp) {
  QBConfig& c = QBConfig::shared();
  c.addSecretUser("S");
  c.setUnlocked(true);
  QBShakeHooks::handleShake();
  EXPECT_FALSE(c.unlocked()) << "a shake while revealed hides";
  c.setUnlocked(true);
  wait(0.3);
  QBShakeHooks::handleShake();
  EXPECT_TRUE(c.unlocked()) << "0.3 s later: ignored";
  wait(0.5);
  QBShakeHooks::handleShake();
  EXPECT_FALSE(c.unlocked()) << "0.8 s after the first: acts";
  wait(1);
  QBShakeHooks::handleShake();  // hidden: asks for the password
  process->runDue();
  ASSERT_NE(alert(), nullptr);
  wait(1);
  std::size_t before = device.log().size();
  QBShakeHooks::handleShake();
  EXPECT_EQ(countLog("[QB] show auth", before), 0) << "the alert is on screen";
}

}  // namespace
