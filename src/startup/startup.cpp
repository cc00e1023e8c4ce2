#include "startup/startup.hpp"

#include "startup/process_role.hpp"
#include "sys/bundle.hpp"
#include "notify/springboard_guard.hpp"

#include "core/config.hpp"
#include "sys/process_state.hpp"
#include "hiding/contact_hooks.hpp"
#include "hiding/extra_hooks.hpp"
#include "hiding/outside_hooks.hpp"
#include "hiding/session_hooks.hpp"
#include "host/hook_tally.hpp"
#include "notify/notify_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/guarded.hpp"
#include "sys/log.hpp"
#include "sys/queue.hpp"
#include "triggers/auto_lock.hpp"
#include "triggers/entry_hooks.hpp"
#include "triggers/schedule.hpp"
#include "triggers/shake_hooks.hpp"
#include "triggers/unlock.hpp"

namespace core {
namespace {

using hiding::QBSessionHooks;

struct StartupState {
  bool fullInstallDone = false;  // step C runs at most once per process
};

void delayedReapply() {
  QBConfig& c = QBConfig::shared();
  // Read afresh: a reveal or an authentication screen since step C cancels it.
  if (!c.suppressAutoLock() && !c.suppressSessionApply() && !c.unlocked() && c.secretCount() > 0) {
    QBSessionHooks::refreshFilterCache();
    QBSessionHooks::softReloadMainFrame();
  }
}

void stepC() {
  StartupState& s = sys::state<StartupState>();
  if (s.fullInstallDone) return;
  s.fullInstallDone = true;
  QBConfig& c = QBConfig::shared();
  c.setUnlocked(false);
  QBSessionHooks::install();
  QBSessionHooks::refreshFilterCache();
  hiding::QBContactHooks::install();
  hiding::QBExtraHooks::install();
  notify::QBNotifyHooks::install();
  triggers::QBAutoLock::install();
  triggers::QBSchedule::install();
  triggers::QBUnlock::installLongPressWake();
  // The shake hooks are reached only through their runtime class's name.
  rt::Class shake = rt::getClass("QBShakeHooks");
  if (shake && rt::respondsTo(rt::toId(shake), rt::sel("install")))
    rt::send<void>(shake, "install");
  host::logHookTally();
  if (c.shouldHideSecrets()) QBSessionHooks::softReloadMainFrame();
  for (double delay : kReapplyDelays_s) sys::after(delay, delayedReapply);
}

void stepB() {
  triggers::QBEntryHooks::install();
  stepC();
}

void stepA() {
  // The library's runtime classes exist from the moment it is loaded.
  triggers::QBShakeHooks::registerRuntimeClass();
  panel::QBPanelController::registerRuntimeClass();
  QBConfig::shared().setUnlocked(false);
  // Hidden at every start: the filter's first refresh sweeps what
  // Notification Center kept of a secret's from a run that ended while they
  // were shown, and cleans for contacts made secret while not running. The
  // host's first donation and index are filtered.
  notify::QBNotifyHooks::watchFilterForSweeps();
  hiding::QBOutsideHooks::install();
  QBSessionHooks::install();
}

}  // namespace

void runStartupSteps(void (*early)(), void (*rest)()) {
  sys::guarded("[QB] early FATAL: %@", early);
  sys::async([rest] { sys::guarded("[QB] init FATAL: %@", rest); });
}

void libraryEntry() {
  switch (processRole()) {
    case ProcessRole::Host:
      runStartupSteps(stepA, stepB);
      return;
    case ProcessRole::SpringBoard:
      sys::log("[QB] SpringBoard: lock-screen guard only");
      sys::guarded("[QB] early FATAL: %@", notify::QBSpringBoardGuard::install);
      return;
    case ProcessRole::Other:
      sys::log("[QB] not the host (%@): nothing installed",
               sys::mainBundleString("CFBundleIdentifier"));
      return;
  }
}

}  // namespace core
