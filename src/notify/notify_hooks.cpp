#include "notify/notify_hooks.hpp"

namespace notify {

// Not built yet: start-up calls it in its place; it does nothing.
void QBNotifyHooks::install() {}
void QBNotifyHooks::syncVoipAutoIgnore() {}

}  // namespace notify
