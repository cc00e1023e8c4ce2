#include "triggers/schedule.hpp"

#include "core/config.hpp"
#include "sys/process_state.hpp"
#include "hiding/session_hooks.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"

namespace triggers {
namespace {

using core::QBConfig;
using hiding::QBSessionHooks;

struct ScheduleState {
  bool installed = false;
  sys::Timer timer;
};

}  // namespace

bool QBSchedule::shouldBeVisibleNow() {
  QBConfig& c = QBConfig::shared();
  if (!c.usesScheduleVisibility() || c.secretCount() == 0) return false;
  return c.scheduleShowsAt(sys::localMinuteOfDay());
}

void QBSchedule::applyNow() {
  QBConfig& c = QBConfig::shared();
  // An authentication or panel screen being up freezes the schedule until the next tick.
  if (!c.usesScheduleVisibility() || c.secretCount() <= 0 || c.suppressAutoLock() ||
      c.suppressSessionApply())
    return;
  bool visible = shouldBeVisibleNow();
  if (visible == c.unlocked()) return;
  sys::log("[QB] schedule apply → %@", visible ? "show" : "hide");
  if (visible) {
    c.setUnlocked(true);
    QBSessionHooks::refreshFilterCache();
    QBSessionHooks::revealSecretsNow();
  } else {
    c.lock();
    QBSessionHooks::refreshFilterCache();
    QBSessionHooks::softReloadMainFrameForce(true);
  }
}

void QBSchedule::onTick() { applyNow(); }

void QBSchedule::install() {
  ScheduleState& s = sys::state<ScheduleState>();
  if (s.installed) return;
  s.installed = true;
  sys::async([] {
    sys::state<ScheduleState>().timer = sys::scheduleRepeatingTimer(kScheduleInterval_s, onTick);
    for (const char* name : {sys::kDidBecomeActive, sys::kWillEnterForeground})
      sys::addObserver(name, [](const sys::Notification&) { applyNow(); });
    sys::after(kScheduleFirstApply_s, applyNow);
    sys::log("[QB] schedule OK");
  });
}

}  // namespace triggers
