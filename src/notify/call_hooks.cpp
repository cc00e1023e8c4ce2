// The four hooks on the host's call paths: its in-app call banner (two
// forms) and its two CallKit reports. A blocked secret call is still
// reported to CallKit first, since a VoIP push must end in a report; only in
// the background is the call then ended again, through whichever end
// selector this host's VoipCXMgr has.
#include <string>

#include "core/config.hpp"
#include "host/runtime_toolkit.hpp"
#include "notify/notify_state.hpp"
#include "notify/predicates.hpp"
#include "notify/probes.hpp"
#include "rt/encoding.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/log.hpp"
#include "sys/queue.hpp"

namespace notify {
namespace {

using rt::SEL;

NotifyState& st() { return notifyState(); }

constexpr double kSecondEnd_s = 0.15;

// The in-app call banner: a call leftover, or a secret voice caller while the
// voice switch is off, shows nothing.
bool monoBannerBlocked(Id m) {
  if (callLeftover(m)) return true;
  std::string from = firstString(m, {"fromUserName"});
  if (from.empty()) from = firstString(m, {"m_nsFromUsr"});
  return isSecret(from) && !core::QBConfig::shared().voipVoiceNotifyEnabled();
}

void monoShowLocal(Id self, SEL cmd, Id m, bool repeatVibration, bool silently) {
  st().monoShowLocal.run(
      "[QB] MonoServiceMsgMgr showLocalNotificationWithMsg: ex: %@",
      [&](auto& original) {
        if (!monoBannerBlocked(m)) original(m, repeatVibration, silently);
      },
      self, cmd, m, repeatVibration, silently);
}

void monoShowLocalIlink(Id self, SEL cmd, Id m, bool repeatVibration, bool callkitAvailable) {
  st().monoShowLocalIlink.run(
      "[QB] MonoServiceMsgMgr showLocalNotificationByIlinkWithMsg: ex: %@",
      [&](auto& original) {
        if (!monoBannerBlocked(m)) original(m, repeatVibration, callkitAvailable);
      },
      self, cmd, m, repeatVibration, callkitAvailable);
}

// The call type argument: an NSNumber 1 or 2 is video; a string never is.
bool videoFlag(Id type) {
  if (!type || rt::isString(type) || !rt::answersIntegerValue(type)) return false;
  return static_cast<unsigned long>(rt::integerValue(type) - 1) < 2;
}

bool applicationActive() {
  rt::Class app = rt::getClass("UIApplication");
  Id shared = app ? rt::send<Id>(app, "sharedApplication") : nullptr;
  return rt::send<long>(shared, "applicationState") == 0;
}

// Whether argument `index` (0 is the first after the selector) of `obj`'s
// method `selector` is a 4-byte integer: the end calls pass the host's own
// width, which differs between builds.
bool narrowInteger(Id obj, const char* selector, int index) {
  rt::Method m = rt::getInstanceMethod(rt::classOf(obj), rt::sel(selector));
  const char* types = m ? rt::typeEncoding(m) : nullptr;
  std::string t = types ? rt::normalizedEncoding(types) : "";
  const char* p = t.c_str();
  for (int i = 0; i < index + 3 && *p; ++i) p = rt::skipType(p);
  return *p == 'i' || *p == 'I';
}

// `f` with an integer of the width `narrow` says.
template <typename F>
void withWidth(bool narrow, long value, F&& f) {
  if (narrow)
    f(static_cast<unsigned>(value));
  else
    f(value);
}

void endStep(Id mgr) {
  host::guarded("[QB] end CallKit ex: %@", [mgr] {
    const char* ended = "reportCallEnded:";
    const char* atDate = "reportCallEndedAtDate:reason:roomID:";
    if (rt::respondsTo(mgr, rt::sel("requestEndCallTrans"))) {
      rt::send<void>(mgr, "requestEndCallTrans");
      sys::log("[QB] CallKit requestEndCallTrans");
    } else if (rt::respondsTo(mgr, rt::sel(ended))) {
      withWidth(narrowInteger(mgr, ended, 0), 0,
                [&](auto reason) { rt::send<void>(mgr, ended, reason); });
      sys::log("[QB] CallKit reportCallEnded");
    } else if (rt::respondsTo(mgr, rt::sel(atDate))) {
      withWidth(narrowInteger(mgr, atDate, 1), 2, [&](auto reason) {
        withWidth(narrowInteger(mgr, atDate, 2), 0,
                  [&](auto room) { rt::send<void>(mgr, atDate, rt::now(), reason, room); });
      });
      sys::log("[QB] CallKit reportCallEndedAtDate");
    }
  });
}

// Ends the call at once and once more a moment later, when CallKit may have
// re-shown it. The host's end takes no call: once another call has been
// reported meanwhile, the second end would hang up that one, and a caller
// who is not secret is never touched.
void endCallKitCall(Id mgr) {
  if (!mgr) return;
  if (sys::isMainThread())
    endStep(mgr);
  else
    sys::async([mgr] { endStep(mgr); });
  std::uint64_t reported = st().callsReported.load();
  sys::after(kSecondEnd_s, [mgr, reported] {
    if (st().callsReported.load() == reported)
      endStep(mgr);
    else
      sys::log("[QB] CallKit second end skipped: a newer call");
  });
}

Id callKitManager() {
  rt::Class cls = rt::getClass("VoipCXMgr");
  if (cls && rt::respondsTo(rt::toId(cls), rt::sel("sharedInstance")))
    return rt::send<Id>(cls, "sharedInstance");
  return host::QBRuntime::serviceNamed("VoipCXMgr");
}

std::string callerOf(Id user) { return rt::isString(user) ? rt::asString(user).value_or("") : ""; }

void reportIncomingCall(Id self, SEL cmd, Id user, Id type, Id m, bool pushKit, Id displayName,
                        Id completion) {
  st().reportIncomingCall.run(
      "[QB] VoipCXMgr reportIncomingCallFromUser: ex: %@",
      [&](auto& original) {
        ++st().callsReported;
        std::string caller = callerOf(user);
        bool video = videoFlag(type);
        if (!callKindBlocks(caller, video)) {
          original(user, type, m, pushKit, displayName, completion);
          return;
        }
        sys::log("[QB] block CallKit UI from %@ video=%d", sys::privately(caller), int(video));
        original(user, type, m, pushKit, displayName, completion);
        if (!applicationActive()) endCallKitCall(self);
      },
      self, cmd, user, type, m, pushKit, displayName, completion);
}

void reportPushKitCall(Id self, SEL cmd, Id user, Id type, Id m, bool pushKit, bool multitalk) {
  st().reportPushKitCall.run(
      "[QB] VoIPPushKitNotifyService reportIncomingCallFromUser: ex: %@",
      [&](auto& original) {
        ++st().callsReported;
        std::string caller = callerOf(user);
        if (!callKindBlocks(caller, videoFlag(type))) {
          original(user, type, m, pushKit, multitalk);
          return;
        }
        sys::log("[QB] block PK CallKit UI from %@", sys::privately(caller));
        original(user, type, m, pushKit, multitalk);
        if (!applicationActive()) endCallKitCall(callKitManager());
      },
      self, cmd, user, type, m, pushKit, multitalk);
}

}  // namespace

void installCallHooks() {
  NotifyState& s = st();
  exchangeRow(s.monoShowLocal, "MonoServiceMsgMgr",
              "showLocalNotificationWithMsg:repeatVibration:silently:", monoShowLocal);
  exchangeRow(s.monoShowLocalIlink, "MonoServiceMsgMgr",
              "showLocalNotificationByIlinkWithMsg:repeatVibration:isCallkitAvailable:",
              monoShowLocalIlink);
  exchangeRow(s.reportIncomingCall, "VoipCXMgr",
              "reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:",
              reportIncomingCall);
  exchangeRow(
      s.reportPushKitCall, "VoIPPushKitNotifyService",
      "reportIncomingCallFromUser:ofType:withMsg:isPushKit:isMultitalk:", reportPushKitCall);
}

}  // namespace notify
