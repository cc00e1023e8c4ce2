// QBNotifyHooks: notification and call gating for secret contacts. `install`
// exchanges the host's message announcement paths and then its call and
// CallKit paths with the NSObject(QBNotifyHooks) category's qb_ methods, once
// per process; the invitation guard is deliberately left out.
#pragma once

namespace notify {

struct QBNotifyHooks {
  static void install();
  // Follows the call switches for the host's VoIP auto-ignore; kept safe by
  // doing nothing but saying so.
  static void syncVoipAutoIgnore();
};

}  // namespace notify
