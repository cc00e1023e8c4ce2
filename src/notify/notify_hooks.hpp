// QBNotifyHooks: notification and call gating for secret contacts. `install`
// exchanges the host's message announcement paths and then its call and
// CallKit paths with the NSObject(QBNotifyHooks) category's qb_ methods, once
// per process; the invitation guard is deliberately left out. It also keeps
// Notification Center free of a hidden secret's messages in mode 0: what was
// delivered before the secrets hid is removed when they hide.
#pragma once

namespace notify {

struct QBNotifyHooks {
  static void install();
  // Follows the call switches for the host's VoIP auto-ignore; kept safe by
  // doing nothing but saying so.
  static void syncVoipAutoIgnore();
  // While the secrets are hidden in mode 0: fetches what Notification Center
  // holds and removes each notification whose content names a secret (the
  // gating's own test). Both steps are asynchronous; the state is read again
  // when the list comes, so a reveal meanwhile keeps everything.
  static void sweepDeliveredNotifications();
  // Sweeps after every refresh of the filter while it hides in mode 0 (every
  // hide and every new secret refreshes it), once per turn of the main
  // queue. Once per process.
  static void watchFilterForSweeps();
};

}  // namespace notify
