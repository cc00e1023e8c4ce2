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
#include "sys/log.hpp"
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
  s.sweepSawQuiet = hiddenQuiet();
  s.sweepSawSecrets = QBConfig::shared().secretSnapshot();
  hiding::QBSessionHooks::addFilterListener(
      [](const std::unordered_set<std::string>& secrets, bool hiding) {
        NotifyState& st = notifyState();
        bool quiet = hiding && QBConfig::shared().secretNotifyMode() == 0;
        bool added = false;
        for (const std::string& u : secrets) added = added || !st.sweepSawSecrets.count(u);
        bool sweep = quiet && (!st.sweepSawQuiet || added);
        st.sweepSawQuiet = quiet;
        if (added || secrets.size() != st.sweepSawSecrets.size()) st.sweepSawSecrets = secrets;
        if (sweep) sweepDeliveredNotifications();
      });
}

}  // namespace notify
