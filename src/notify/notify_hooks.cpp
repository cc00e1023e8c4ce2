#include "notify/notify_hooks.hpp"

#include "host/hook.hpp"
#include "notify/notify_state.hpp"
#include "sys/log.hpp"

namespace notify {

void QBNotifyHooks::install() {
  NotifyState& s = notifyState();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] notify install ex: %@", [] {
    installMessageHooks();
    installCallHooks();
    sys::log("[QB] notify+CallKit only (no invite hooks)");
  });
}

void QBNotifyHooks::syncVoipAutoIgnore() { sys::log("[QB] VoIPIgnore sync skipped (safe mode)"); }

}  // namespace notify
