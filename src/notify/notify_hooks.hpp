// QBNotifyHooks: notification and call gating for secret contacts.
#pragma once

namespace notify {

struct QBNotifyHooks {
  static void install();
  // Follows the call switches for the host's VoIP auto-ignore.
  static void syncVoipAutoIgnore();
};

}  // namespace notify
