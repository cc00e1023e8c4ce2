// The stored originals of the notification and call hooks. Written once by
// install on the main thread, only read afterwards (but for an atomic count
// of calls), so the host may call the hooks from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "host/hook.hpp"
#include "rt/runtime.hpp"
#include "rt/types.hpp"
#include "sys/process_state.hpp"

namespace notify {

using rt::Id;

// The hooks that take one of the host's integers (a notify flag, a badge, a
// settings mask), in one width: a build declares them as 8-byte (NSInteger,
// NSUInteger) or 4-byte (int, unsigned) integers, and each hook is installed
// in the width its host method has.
template <typename Int>
struct IntegerHooks {
  host::Hook<void(Id, Int)> onNewMsgArriving;
  host::Hook<void(Id, Int)> playNewMsgNotify;
  host::Hook<void(Id, Int)> notifyNewMsg;
  host::Hook<void(Id, Id, Id, Id, Id, Int, Id, Id, Id, Id, bool, bool)> showLocalNotification;
  host::Hook<Id(Id, Int, bool)> notificationInfo;
};

struct NotifyState {
  bool installed = false;
  // Message notification gating.
  host::Hook<bool(Id, Id)> canShowPushForContact{true};
  host::Hook<bool(Id, Id)> canShowPushAtViewController{true};
  host::Hook<bool(Id)> shouldShowQuickReplyPush{true};
  host::Hook<void(Id, double)> showQuickReplyItem;
  IntegerHooks<long> wide;
  IntegerHooks<unsigned> narrow;
  host::Hook<void(Id, Id, Id, bool, bool)> showPush;
  host::Hook<void(Id, Id, bool)> showPushShort;
  host::Hook<void(Id, bool)> onShowPush;
  host::Hook<void(Id, Id)> addNotificationRequest;
  // Calls and CallKit.
  host::Hook<void(Id, bool, bool)> monoShowLocal;
  host::Hook<void(Id, bool, bool)> monoShowLocalIlink;
  host::Hook<void(Id, Id, Id, bool, Id, Id)> reportIncomingCall;
  host::Hook<void(Id, Id, Id, bool, bool)> reportPushKitCall;
  // Every call reported to CallKit so far, from any thread: an end step that
  // comes after a newer call would end that one instead.
  std::atomic<std::uint64_t> callsReported{0};
  // The delivered-notification sweep (main thread only).
  bool sweepWatching = false;
  bool sweepQueued = false;
};

inline NotifyState& notifyState() { return sys::state<NotifyState>(); }

template <typename Int>
IntegerHooks<Int>& integerHooks() {
  if constexpr (sizeof(Int) == 4)
    return notifyState().narrow;
  else
    return notifyState().wide;
}

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

// A row whose hook comes in both integer widths: the 4-byte one when the host
// method takes it, else the 8-byte one (which logs the skip when that does
// not fit either).
template <typename Wide, typename Narrow, typename WideFn, typename NarrowFn>
void exchangeIntegerRow(host::Hook<Wide>& wide, WideFn wideFn, host::Hook<Narrow>& narrow,
                        NarrowFn narrowFn, const char* cls, const char* selector) {
  rt::Class c = rt::getClass(cls);
  rt::Method m = c ? rt::getInstanceMethod(c, rt::sel(selector)) : nullptr;
  if (!m) return;
  if (!wide.fits(m) && narrow.fits(m))
    exchangeRow(narrow, cls, selector, narrowFn);
  else
    exchangeRow(wide, cls, selector, wideFn);
}

}  // namespace notify
