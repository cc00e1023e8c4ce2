// Making the visible lists catch up with the secret state: throttled soft
// reloads of the main and contacts lists, the two-phase reveal, the forced
// apply after a state change, installation with its observers, and the
// lifecycle hooks on the main list's view controller.
#include <algorithm>
#include <vector>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "hiding/session_state.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/guarded.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"

namespace hiding {
namespace {

using core::QBConfig;
using host::QBRuntime;
using rt::Id;
using rt::SEL;

constexpr double kScrollRetryDelay_s = 0.4;
// After the host's own viewDidLoad / viewDidAppear: have the list built first.
constexpr double kAfterLoadReapply_s = 0.15;
constexpr double kAfterAppearReapply_s = 0.2;
// Back in the app: the reload waits for the return's own layout pass.
constexpr double kReturnReload_s = 0.25;
// The reveal's two passes: once the host has rebuilt its sessions, and once
// more for a host that rebuilds late.
constexpr double kRevealFirstPass_s = 0.25;
constexpr double kRevealSecondPass_s = 0.8;

constexpr const char* kDataLogicKeys[] = {"m_contactsDataLogic", "m_dataLogic",
                                          "_contactsDataLogic"};
constexpr const char* kTableKeys[] = {"m_tableView", "tableView", "_tableView"};

bool bothSuppressClear(const QBConfig& c) {
  return !c.suppressAutoLock() && !c.suppressSessionApply();
}

Id tableOf(Id vc) {
  rt::Class tableClass = rt::getClass("UITableView");
  for (const char* key : kTableKeys) {
    Id t = rt::probeKey(vc, key);
    if (t && rt::isKindOf(t, tableClass)) return t;
  }
  return nullptr;
}

void mainFrameReapply() {
  QBSessionHooks::refreshFilterCache();
  QBConfig& c = QBConfig::shared();
  SessionHooksState& s = sessionState();
  double now = sys::mediaTime();
  if (bothSuppressClear(c) && c.secretCount() > 0 && !c.unlocked() &&
      now - s.lastMainAppearReloadAt >= kAppearanceThrottle_s) {
    s.lastMainAppearReloadAt = now;
    QBSessionHooks::softReloadMainFrame();
  }
}

bool isMainFrame(Id self) { return rt::className(self) == kMainFrameClass; }

// The lifecycle hooks ask the host first and then act; a failure of the act
// leaves the host's appearance as it was.
void qbMainViewDidLoad(Id self, SEL cmd) {
  sessionState().mainViewDidLoad.run(
      "[QB] NewMainFrameViewController viewDidLoad ex: %@",
      [&](host::Hook<void()>::Original& original) {
        original();
        if (isMainFrame(self)) sys::after(kAfterLoadReapply_s, mainFrameReapply);
      },
      self, cmd);
}

void qbMainViewWillAppear(Id self, SEL cmd, bool animated) {
  sessionState().mainViewWillAppear.run(
      "[QB] NewMainFrameViewController viewWillAppear: ex: %@",
      [&](host::Hook<void(bool)>::Original& original) {
        original(animated);
        if (isMainFrame(self)) QBSessionHooks::refreshFilterCache();
      },
      self, cmd, animated);
}

void qbMainViewDidAppear(Id self, SEL cmd, bool animated) {
  sessionState().mainViewDidAppear.run(
      "[QB] NewMainFrameViewController viewDidAppear: ex: %@",
      [&](host::Hook<void(bool)>::Original& original) {
        original(animated);
        if (isMainFrame(self)) sys::after(kAfterAppearReapply_s, mainFrameReapply);
      },
      self, cmd, animated);
}

// The system pictures the screen for the app switcher once the background
// notifications are handled, and shows that picture until the app is opened
// again: the lists must already leave the secrets out by then, in any mode.
void hideListsWhileAway() {
  SessionHooksState& s = sessionState();
  if (s.away) return;  // the application's and the scene's notice of one departure
  s.away = true;
  // Reloaded even when hidden: a lock a moment ago (the resign-active before
  // this) or a secret just added may not have reached the list yet.
  if (QBConfig::shared().secretCount() <= 0) return;
  QBSessionHooks::refreshFilterCache();
  QBSessionHooks::softReloadMainFrameForce(true);
}

// Back in the foreground, by which time the schedule has had its say: the
// lists follow the reveal state again.
void showListsOnReturn() {
  SessionHooksState& s = sessionState();
  if (!s.away) return;
  s.away = false;
  QBSessionHooks::refreshFilterCache();
  if (!QBSessionHooks::listsHideSecrets() && QBConfig::shared().secretCount() > 0)
    QBSessionHooks::revealSecretsNow();
}

void installObservers() {
  sys::addObserver(core::kSecretStateChanged, [](const sys::Notification&) {
    QBSessionHooks::refreshFilterCache();
    QBSessionHooks::forceApplyVisibility();
  });
  sys::addObserver(sys::kDidFinishLaunching, [](const sys::Notification&) {
    QBConfig& c = QBConfig::shared();
    if (!bothSuppressClear(c) || c.secretCount() <= 0) return;
    if (c.unlocked()) c.setUnlocked(false);
    QBSessionHooks::refreshFilterCache();
    sys::async([] {
      if (bothSuppressClear(QBConfig::shared())) QBSessionHooks::softReloadMainFrame();
    });
  });
  for (const char* name : {sys::kSceneDidEnterBackground, sys::kDidEnterBackground})
    sys::addObserver(name, [](const sys::Notification&) { hideListsWhileAway(); });
  sys::addObserver(sys::kDidBecomeActive, [](const sys::Notification&) {
    showListsOnReturn();
    QBConfig& c = QBConfig::shared();
    if (!bothSuppressClear(c)) {
      QBSessionHooks::refreshFilterCache();
    } else if (c.secretCount() > 0 && !c.unlocked()) {
      QBSessionHooks::refreshFilterCache();
      sys::after(kReturnReload_s, [] { QBSessionHooks::softReloadMainFrame(); });
    }
  });
}

void installLifecycleHooks() {
  rt::Class vc = rt::getClass(kMainFrameClass);
  rt::Class base = rt::getClass("UIViewController");
  if (!vc || !base) return;
  SessionHooksState& s = sessionState();
  s.mainViewDidLoad.swizzle(base, vc, "viewDidLoad", "qb_main_viewDidLoad", qbMainViewDidLoad);
  s.mainViewWillAppear.swizzle(base, vc,
                               "viewWillAppear:", "qb_main_viewWillAppear:", qbMainViewWillAppear);
  s.mainViewDidAppear.swizzle(base, vc,
                              "viewDidAppear:", "qb_main_viewDidAppear:", qbMainViewDidAppear);
}

}  // namespace

void QBSessionHooks::install() {
  SessionHooksState& s = sessionState();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] install FATAL: %@", [] {
    QBConfig::shared().setUnlocked(false);
    refreshFilterCache();
    installSessionFilterHooks();
    installLifecycleHooks();
    installObservers();
    sys::log("[QB] session hooks READY (early, default secret)");
  });
}

bool QBSessionHooks::listsHideSecrets() {
  return hiding::listsHideSecrets(QBConfig::shared(), sessionState());
}

void QBSessionHooks::softReloadMainFrame() { softReloadMainFrameForce(false); }
void QBSessionHooks::reloadMainFrame() { softReloadMainFrameForce(false); }
void QBSessionHooks::applyNativeHideState() {}

void QBSessionHooks::softReloadMainFrameForce(bool force) {
  SessionHooksState& s = sessionState();
  if (s.reloadBusy && !force) return;
  double now = sys::mediaTime();
  if (!force && now - s.lastSoftReloadAt < kSoftReloadThrottle_s) return;
  s.lastSoftReloadAt = now;
  s.reloadBusy = true;
  // A reload is where the lists catch up with the host: walked afresh.
  flushRowMaps();
  // A main list under the user's finger defers the whole reload, busy until the retry.
  bool deferred = host::guarded(
      "[QB] softReload ex: %@",
      [&] {
        // A controller is listed once as a child and again as a tab's or a
        // navigation stack's: each list is reloaded once per pass.
        std::vector<Id> reloadedLists;
        for (Id vc : QBRuntime::collectViewControllers()) {
          std::string_view name = rt::className(vc);
          bool main = name == kMainFrameClass;
          if (!main && name != kContactsScreenClass) continue;
          if (std::find(reloadedLists.begin(), reloadedLists.end(), vc) != reloadedLists.end())
            continue;
          reloadedLists.push_back(vc);
          if (!main) {
            for (const char* key : kDataLogicKeys) {
              Id logic = rt::probeKey(vc, key);
              if (logic && rt::respondsTo(logic, rt::sel("reloadContacts"))) {
                rt::send<void>(logic, "reloadContacts");
                sys::log("[QB] reloadContacts");
                break;
              }
            }
          }
          bool reloaded = false;
          if (Id table = tableOf(vc)) {
            if (main && !force &&
                (rt::send<bool>(table, "isDragging") || rt::send<bool>(table, "isDecelerating"))) {
              // Reloading under the user's finger jumps the list; try again shortly, forced.
              sys::after(kScrollRetryDelay_s, [] {
                SessionHooksState& st = sessionState();
                st.reloadBusy = false;
                st.lastSoftReloadAt = 0;
                softReloadMainFrameForce(true);
              });
              return true;
            }
            rt::send<void>(table, "reloadData");
            reloaded = true;
            if (main)
              sys::log("[QB] softReload main force=%d", force);
            else
              sys::log("[QB] softReload contacts");
          }
          if (main && force && !reloaded && rt::respondsTo(vc, rt::sel("reloadSessions")))
            rt::send<void>(vc, "reloadSessions");
        }
        return false;
      },
      false);
  if (!deferred) s.reloadBusy = false;
}

void QBSessionHooks::revealSecretsNow() {
  host::guarded("[QB] reveal ex: %@", [] {
    refreshFilterCache();
    if (listsHideSecrets()) {
      sys::log("[QB] reveal skipped still hidden");
      return;
    }
    if (Id mgr = mainSessionMgr()) {
      if (rt::respondsTo(mgr, rt::sel("rebuildMainSessions"))) {
        rt::send<void>(mgr, "rebuildMainSessions");
        sys::log("[QB] rebuildMainSessions");
      }
      if (rt::respondsTo(mgr, rt::sel("updateMainSessionList")))
        rt::send<void>(mgr, "updateMainSessionList");
    }
    sys::after(kRevealFirstPass_s, [] {
      refreshFilterCache();
      for (Id vc : QBRuntime::collectViewControllers()) {
        if (rt::className(vc) != kMainFrameClass) continue;
        sys::quietly([vc] {
          if (rt::respondsTo(vc, rt::sel("reloadSessions"))) rt::send<void>(vc, "reloadSessions");
        });
        break;
      }
      softReloadMainFrameForce(true);
    });
    sys::after(kRevealSecondPass_s, [] {
      if (!QBConfig::shared().unlocked()) return;  // a quick hide in between is not undone
      refreshFilterCache();
      softReloadMainFrameForce(true);
    });
  });
}

void QBSessionHooks::forceApplyVisibility() {
  SessionHooksState& s = sessionState();
  if (s.applyBusy) return;
  QBConfig& c = QBConfig::shared();
  if (c.suppressSessionApply()) {
    refreshFilterCache();
    return;
  }
  double now = sys::mediaTime();
  if (now - s.lastForceApplyAt < kForceApplyThrottle_s) return;
  s.lastForceApplyAt = now;
  s.applyBusy = true;
  host::guarded("[QB] forceApply ex: %@", [&c] {
    refreshFilterCache();
    if (c.secretCount() > 0) {
      if (listsHideSecrets())
        softReloadMainFrameForce(true);
      else
        revealSecretsNow();
    }
  });
  s.applyBusy = false;
}

}  // namespace hiding
