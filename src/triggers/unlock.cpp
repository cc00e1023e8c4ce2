#include "triggers/unlock.hpp"

#include "core/config.hpp"
#include "sys/process_state.hpp"
#include "hiding/session_hooks.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/queue.hpp"
#include "triggers/auth.hpp"
#include "triggers/reveal_settle.hpp"
#include "ui/feedback.hpp"
#include "ui/gestures.hpp"

namespace triggers {
namespace {

using core::QBConfig;
using hiding::QBSessionHooks;

struct UnlockState {
  bool revealInProgress = false;
  double lastRevealStart = 0;
  bool wakeInstalled = false;
  host::Hook<void(bool)> viewDidAppear;
};

// Marks a view that already carries the long-press recognizer.
const char kLongPressMarker = 0;

UnlockState& state() { return sys::state<UnlockState>(); }

// Exactly these classes: subclasses that inherit the method do not qualify.
bool isLongPressScreen(rt::Id controller) {
  std::string_view name = rt::className(controller);
  for (const char* screen : kLongPressScreens)
    if (name == screen) return true;
  return false;
}

// Asks the host first, then attaches the recogniser a moment later.
void qbUnlockViewDidAppear(rt::Id self, rt::SEL cmd, bool animated) {
  state().viewDidAppear.run(
      "[QB] QBUnlock viewDidAppear: ex: %@",
      [&](host::Hook<void(bool)>::Original& original) {
        original(animated);
        // Held weakly: a chat left within the turn is gone by then.
        if (isLongPressScreen(self))
          sys::async([screen = rt::Weak(self)] {
            if (rt::Strong vc = screen.lock()) QBUnlock::attachLongPressToVC(vc.get());
          });
      },
      self, cmd, animated);
}

}  // namespace

void QBUnlock::bumpHaptic() { ui::impact(ui::ImpactStyle::Soft); }

void QBUnlock::hideNow() {
  QBConfig& c = QBConfig::shared();
  if (!c.usesManualVisibility() || !c.unlocked()) return;
  c.setUnlocked(false);
  QBSessionHooks::refreshFilterCache();
  bumpHaptic();
  sys::after(kHideReload_s, [] { QBSessionHooks::softReloadMainFrameForce(true); });
}

void QBUnlock::showWithAuthFrom(std::string_view source) {
  UnlockState& s = state();
  if (s.revealInProgress) return;
  QBConfig& c = QBConfig::shared();
  if (!c.usesManualVisibility() || c.secretCount() <= 0 || c.unlocked()) return;
  double now = sys::mediaTime();
  if (now - s.lastRevealStart < kRevealDebounce_s) return;
  s.lastRevealStart = now;
  s.revealInProgress = true;
  c.setSuppressAutoLock(true);
  c.setSuppressSessionApply(true);
  sys::log("[QB] show auth from %@", source.empty() ? std::string_view("?") : source);
  revealSettle() = RevealSettle{true, false, false};
  QBAuth::authenticateToShowWithFallbackPassword(true, [](bool passed) {
    QBConfig& cfg = QBConfig::shared();
    // A departure after the check succeeded has locked already: stay hidden.
    if (!passed || revealSettle().lockedWhileSettling) {
      cfg.setSuppressAutoLock(false);
      cfg.setSuppressSessionApply(false);
      state().revealInProgress = false;
      revealSettle() = RevealSettle{};
      return;
    }
    cfg.setUnlocked(true);
    cfg.setSuppressSessionApply(false);
    QBSessionHooks::refreshFilterCache();
    bumpHaptic();
    QBSessionHooks::revealSecretsNow();
    // Auto-lock stays held for the settling time, so a resign-active from the
    // prompt going away does not hide again.
    sys::after(kRevealSettle_s, [] {
      QBConfig& c2 = QBConfig::shared();
      c2.setSuppressAutoLock(false);
      state().revealInProgress = false;
      revealSettle() = RevealSettle{};
      if (c2.unlocked()) {
        QBSessionHooks::refreshFilterCache();
        QBSessionHooks::softReloadMainFrameForce(true);
      }
    });
  });
}

void QBUnlock::onLongPress(rt::Id recognizer) {
  if (ui::gestureState(recognizer) != ui::GestureState::Began) return;
  QBConfig& c = QBConfig::shared();
  if (!c.usesManualVisibility() || !c.longPressUnlockEnabled() || c.secretCount() <= 0) return;
  if (c.suppressSessionApply() && !c.suppressAutoLock()) return;
  if (state().revealInProgress) return;
  if (c.unlocked())
    hideNow();
  else
    showWithAuthFrom("longPress");
}

void QBUnlock::attachLongPressToVC(rt::Id controller) {
  if (!controller || !QBConfig::shared().longPressUnlockEnabled()) return;
  rt::Id nav = rt::send<rt::Id>(controller, "navigationController");
  rt::Id target = nav ? rt::send<rt::Id>(nav, "navigationBar") : nullptr;
  if (!target) target = rt::send<rt::Id>(controller, "view");
  if (!target || rt::getAssociatedObject(target, &kLongPressMarker)) return;
  rt::Id recognizer = ui::addLongPress(target, kLongPressDuration_s, false, onLongPress);
  rt::setAssociatedObject(target, &kLongPressMarker, recognizer);
}

void QBUnlock::installLongPressWake() {
  UnlockState& s = state();
  if (s.wakeInstalled) return;
  s.wakeInstalled = true;
  host::guarded("[QB] long-press install ex: %@", [&s] {
    rt::Class base = rt::getClass("UIViewController");
    for (const char* screen : kLongPressScreens)
      if (rt::Class cls = rt::getClass(screen))
        s.viewDidAppear.swizzle(
            base, cls, "viewDidAppear:", "qb_unlock_viewDidAppear:", qbUnlockViewDidAppear);
    // The first main list appeared before this install: it gets the press now.
    for (rt::Id vc : host::QBRuntime::collectViewControllers())
      if (isLongPressScreen(vc)) attachLongPressToVC(vc);
    sys::log("[QB] long-press wake OK");
  });
}

}  // namespace triggers
