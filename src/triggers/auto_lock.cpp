#include "triggers/auto_lock.hpp"

#include "core/config.hpp"
#include "core/process_state.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"

namespace triggers {
namespace {

struct AutoLockState {
  double lastAutoLockAt = 0;
};

}  // namespace

void QBAutoLock::install() {
  for (const char* name : {sys::kDidEnterBackground, sys::kWillResignActive, sys::kSceneDidEnterBackground,
                           sys::kSceneWillDeactivate}) {
    sys::addObserver(name, [](const sys::Notification& n) { autoLockWithReason(n.name.empty() ? "?" : n.name); });
  }
  sys::log("[QB] auto-lock OK");
}

void QBAutoLock::autoLockWithReason(std::string_view reason) {
  core::QBConfig& c = core::QBConfig::shared();
  // In schedule mode the schedule alone decides; an authentication on screen
  // makes the app resign active and must not re-lock.
  if (!c.usesManualVisibility() || c.suppressAutoLock() || c.secretCount() <= 0 || !c.unlocked()) return;
  AutoLockState& s = core::state<AutoLockState>();
  double now = sys::mediaTime();
  if (now - s.lastAutoLockAt < kAutoLockDebounce) return;
  s.lastAutoLockAt = now;
  sys::log("[QB] auto-lock %@", reason);
  c.lock();
}

}  // namespace triggers
