// Notification Center keeps what was delivered while the secrets were shown
// (a show window, another notify mode then, a contact not yet secret) after
// they hide. In mode 0 the user asked for nothing of a hidden secret's to be
// seen, so those are removed when the secrets hide; modes 1 and 2 keep them.
#include <vector>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/hook.hpp"
#include "notify/notify_hooks.hpp"
#include "notify/notify_state.hpp"
#include "notify/predicates.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/queue.hpp"
#include "sys/user_notifications.hpp"

namespace notify {
namespace {

using core::QBConfig;

bool hiddenQuiet() {
  QBConfig& c = QBConfig::shared();
  return c.shouldHideSecrets() && c.secretNotifyMode() == 0;
}

rt::Id notificationCenter() {
  rt::Class cls = rt::getClass("UNUserNotificationCenter");
  if (!cls || !rt::respondsTo(rt::toId(cls), rt::sel("currentNotificationCenter"))) return nullptr;
  rt::Id center = rt::send<rt::Id>(cls, "currentNotificationCenter");
  bool canSweep =
      center && rt::respondsTo(center, rt::sel("getDeliveredNotificationsWithCompletionHandler:")) &&
      rt::respondsTo(center, rt::sel("removeDeliveredNotificationsWithIdentifiers:"));
  return canSweep ? center : nullptr;
}

// On the framework's queue: the list as it is now.
void removeSecrets(rt::Id center, rt::Id delivered) {
  if (!hiddenQuiet()) return;  // revealed while the list was fetched
  std::vector<rt::Id> identifiers;
  for (rt::Id n : rt::elements(delivered)) {
    rt::Id request = rt::send<rt::Id>(n, "request");
    if (request && contentNamesSecret(rt::send<rt::Id>(request, "content")))
      identifiers.push_back(rt::send<rt::Id>(request, "identifier"));
  }
  if (identifiers.empty()) return;
  rt::send<void>(center, "removeDeliveredNotificationsWithIdentifiers:", rt::array(identifiers));
  sys::log("[QB] removed %ld delivered notification(s)", long(identifiers.size()));
}

}  // namespace

void QBNotifyHooks::sweepDeliveredNotifications() {
  host::guarded("[QB] sweep ex: %@", [] {
    if (!hiddenQuiet()) return;
    rt::Id center = notificationCenter();
    if (!center) return;
    sys::getDeliveredNotifications(center, [center](rt::Id delivered) {
      host::guarded("[QB] sweep ex: %@", [&] { removeSecrets(center, delivered); });
    });
  });
}

void QBNotifyHooks::watchFilterForSweeps() {
  NotifyState& s = notifyState();
  if (s.sweepWatching) return;
  s.sweepWatching = true;
  // Not only when the filter turns to hiding: a reveal may set the state
  // without a refresh, and a remote push may land without the app. A turn's
  // refreshes share one fetch.
  hiding::QBSessionHooks::addFilterListener([](const std::unordered_set<std::string>&, bool hiding) {
    NotifyState& st = notifyState();
    QBConfig& c = QBConfig::shared();
    // Hidden at start while the schedule is about to show them: not a hide.
    bool scheduleShows = c.usesScheduleVisibility() && c.scheduleShowsAt(sys::localMinuteOfDay());
    if (!hiding || c.secretNotifyMode() != 0 || scheduleShows || st.sweepQueued) return;
    st.sweepQueued = true;
    sys::async([] {
      notifyState().sweepQueued = false;
      sweepDeliveredNotifications();
    });
  });
}

}  // namespace notify
