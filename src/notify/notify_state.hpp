// The stored originals of the notification and call hooks. Written once by
// install on the main thread, only read afterwards, so the host may call the
// hooks from any thread.
#pragma once

#include <string>

#include "host/hook.hpp"
#include "rt/runtime.hpp"
#include "rt/types.hpp"
#include "sys/process_state.hpp"

namespace notify {

using rt::Id;

struct NotifyState {
  bool installed = false;
  // Message notification gating.
  host::Hook<bool(Id, Id)> canShowPushForContact{true};
  host::Hook<bool(Id, Id)> canShowPushAtViewController{true};
  host::Hook<void(Id, long)> onNewMsgArriving;
  host::Hook<bool(Id)> shouldShowQuickReplyPush{true};
  host::Hook<void(Id, double)> showQuickReplyItem;
  host::Hook<void(Id, long)> playNewMsgNotify;
  host::Hook<void(Id, long)> notifyNewMsg;
  host::Hook<void(Id, Id, Id, Id, Id, long, Id, Id, Id, Id, bool, bool)> showLocalNotification;
  host::Hook<void(Id, Id, Id, bool, bool)> showPush;
  host::Hook<void(Id, Id, bool)> showPushShort;
  host::Hook<Id(Id, long, bool)> notificationInfo;
  host::Hook<void(Id, bool)> onShowPush;
  host::Hook<void(Id, Id)> addNotificationRequest;
  // Calls and CallKit.
  host::Hook<void(Id, bool, bool)> monoShowLocal;
  host::Hook<void(Id, bool, bool)> monoShowLocalIlink;
  host::Hook<void(Id, Id, Id, bool, Id, Id)> reportIncomingCall;
  host::Hook<void(Id, Id, Id, bool, bool)> reportPushKitCall;
  // The delivered-notification sweep (main thread only).
  bool sweepWatching = false;
  bool sweepQueued = false;
};

inline NotifyState& notifyState() { return sys::state<NotifyState>(); }

void installMessageHooks();
void installCallHooks();

// The class that carries the system's qb_ methods (the NSObject category).
rt::Class categoryOwner();

// One row of a hook table: the class by name, the selector on it, then the
// exchange with the qb_ method; a missing class or selector skips the row.
template <typename Sig, typename Fn>
void exchangeRow(host::Hook<Sig>& hook, const char* cls, const char* selector, Fn fn) {
  rt::Class c = rt::getClass(cls);
  if (!c || !rt::getInstanceMethod(c, rt::sel(selector))) return;
  hook.swizzle(categoryOwner(), c, selector, std::string("qb_") + selector, fn);
}

}  // namespace notify
