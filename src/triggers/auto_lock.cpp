#include "triggers/auto_lock.hpp"

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "sys/process_state.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"
#include "triggers/reveal_settle.hpp"

namespace triggers {
namespace {

struct AutoLockState {
  double lastAutoLockAt = 0;
};

bool isBackground(const std::string& name) {
  return name == sys::kDidEnterBackground || name == sys::kSceneDidEnterBackground;
}

}  // namespace

void QBAutoLock::install() {
  for (const char* name : {sys::kDidEnterBackground, sys::kWillResignActive,
                           sys::kSceneDidEnterBackground, sys::kSceneWillDeactivate}) {
    sys::addObserver(name, [](const sys::Notification& n) {
      std::string reason = n.name.empty() ? "?" : n.name;
      // A reveal still settling holds the auto-lock back against the prompt's
      // own resign-active, never against really leaving the app.
      RevealSettle& settle = revealSettle();
      if (settle.settling && isBackground(n.name)) {
        if (lockNow(reason, true)) settle.lockedWhileSettling = true;
      } else {
        autoLockWithReason(reason);
      }
    });
  }
  sys::log("[QB] auto-lock OK");
}

void QBAutoLock::autoLockWithReason(std::string_view reason) { lockNow(reason, false); }

bool QBAutoLock::lockNow(std::string_view reason, bool evenIfSuppressed) {
  core::QBConfig& c = core::QBConfig::shared();
  // In schedule mode the schedule alone decides; an authentication on screen
  // makes the app resign active and must not re-lock.
  if (!c.usesManualVisibility() || (c.suppressAutoLock() && !evenIfSuppressed) ||
      c.secretCount() <= 0 || !c.unlocked())
    return false;
  AutoLockState& s = sys::state<AutoLockState>();
  double now = sys::mediaTime();
  if (now - s.lastAutoLockAt < kAutoLockDebounce_s) return false;
  s.lastAutoLockAt = now;
  sys::log("[QB] auto-lock %@", reason);
  c.lock();
  return true;
}

}  // namespace triggers
