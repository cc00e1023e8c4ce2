// QBNotifyHooks: notification and call gating for secret contacts.
#pragma once

namespace notify {

struct QBNotifyHooks {
  static void install();
};

}  // namespace notify
