// The host's call paths. While the app is active an incoming call is
// reported to CallKit through VoipCXMgr (the call screen rings) and shown as
// an in-app call banner that vibrates (MonoServiceMsgMgr); in the background
// it arrives by VoIP push and VoIPPushKitNotifyService reports it to CallKit
// directly. An unanswered call rings for 30 s, then ends and leaves a
// missed-call message that takes the message paths. VoipCXMgr's end
// selectors differ between builds.
#include "sim/hostapp/call_screen_view.hpp"
#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sys/queue.hpp"

namespace hostapp {

rt::Id makeHostMessage(const std::string& from, const std::string& text, bool call, bool video);

namespace {

using rt::Id;
using rt::SEL;

constexpr double kUnansweredRing_s = 30.0;

sim::Notices& notices() { return sim::currentProcess().device().notices(); }
bool responds(Id obj, const char* selector) {
  return obj && rt::respondsTo(obj, rt::sel(selector));
}

// --- VoipCXMgr: the host's CallKit provider.
Id sharedCallKitMgr(Id, SEL) {
  Id& slot = sim::runtime().singleton("hostapp.VoipCXMgr");
  if (!slot) slot = rt::send<Id>(rt::getClass("VoipCXMgr"), "new");
  return slot;
}
// The system's call screen comes up over the app while a call rings.
void ring(Id user) {
  if (!user) return;
  notices().ring();
  std::string from = rt::asString(user).value_or("");
  auto call = notices().latestCall(from);
  showCallScreen(HostApp::current().displayName(from), call && call->kind == "video call");
}
void endCall() {
  if (notices().endCall()) hideCallScreen();
}

void reportIncomingCall(Id, SEL, Id user, Id, Id, bool, Id, Id) { ring(user); }
void endCallTrans(Id, SEL) { endCall(); }
template <typename Int>
void reportCallEnded(Id, SEL, Int) {
  endCall();
}
template <typename Int>
void reportCallEndedAtDate(Id, SEL, Id, Int, Int) {
  endCall();
}

// --- MonoServiceMsgMgr: the in-app call banner.
void monoShowLocal(Id, SEL, Id m, bool repeatVibration, bool) {
  if (!m) return;
  notices().banner("in-app");
  notices().vibrate();
  if (repeatVibration) notices().vibrate();
}

// --- VoIPPushKitNotifyService: the push reports to CallKit itself.
void pushKitReport(Id, SEL, Id user, Id, Id, bool, bool) { ring(user); }

Id callKitMgr() {
  rt::Class cls = rt::getClass("VoipCXMgr");
  if (cls && rt::respondsTo(rt::toId(cls), rt::sel("sharedInstance")))
    return rt::send<Id>(cls, "sharedInstance");
  return hostService("VoipCXMgr");
}

}  // namespace

void defineCallClasses(HostApp& app) {
  HostClass cx(app, "VoipCXMgr");
  cx.classMethod("sharedInstance", sharedCallKitMgr)
      .method("reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:",
              reportIncomingCall);
  withHostInteger(app.build, [&](auto zero) {
    using Int = decltype(zero);
    if (app.build.hasVariant("callkit-end-reportended"))
      cx.method("reportCallEnded:", reportCallEnded<Int>);
    else if (app.build.hasVariant("callkit-end-atdate"))
      cx.method("reportCallEndedAtDate:reason:roomID:", reportCallEndedAtDate<Int>);
    else if (!app.build.hasVariant("callkit-end-none"))
      cx.method("requestEndCallTrans", endCallTrans);
  });
  cx.build();
  HostClass mono(app, "MonoServiceMsgMgr");
  if (app.build.hasVariant("ilink-calls"))
    mono.method("showLocalNotificationByIlinkWithMsg:repeatVibration:isCallkitAvailable:",
                monoShowLocal);
  else
    mono.method("showLocalNotificationWithMsg:repeatVibration:silently:", monoShowLocal);
  mono.build();
  HostClass(app, "VoIPPushKitNotifyService")
      .method("reportIncomingCallFromUser:ofType:withMsg:isPushKit:isMultitalk:", pushKitReport)
      .build();
}

void HostApp::deliverCall(const std::string& from, bool video) {
  sim::Process& p = sim::currentProcess();
  notices().begin(from, video ? "video call" : "voice call", video ? "[视频通话]" : "[语音通话]",
                  p.device().localSecondOfDay());
  Id m = makeHostMessage(from, video ? "[视频通话]" : "[语音通话]", true, video);
  Id type = rt::number(video ? 1 : 0);
  if (p.appState() == sim::AppState::Active) {
    Id cx = callKitMgr();
    const char* report =
        "reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:";
    if (responds(cx, report))
      rt::send<void>(cx, report, rt::str(from), type, m, false, rt::str(from), Id{nullptr});
    Id mono = hostService("MonoServiceMsgMgr");
    if (responds(mono, "showLocalNotificationWithMsg:repeatVibration:silently:"))
      rt::send<void>(mono, "showLocalNotificationWithMsg:repeatVibration:silently:", m, true,
                     false);
    else if (responds(mono,
                      "showLocalNotificationByIlinkWithMsg:repeatVibration:isCallkitAvailable:"))
      rt::send<void>(mono,
                     "showLocalNotificationByIlinkWithMsg:repeatVibration:isCallkitAvailable:", m,
                     true, true);
  } else {
    Id push = hostService("VoIPPushKitNotifyService");
    const char* report = "reportIncomingCallFromUser:ofType:withMsg:isPushKit:isMultitalk:";
    if (responds(push, report)) rt::send<void>(push, report, rt::str(from), type, m, true, false);
  }
  sys::after(kUnansweredRing_s, [this, from, video] {
    if (notices().endCall(from)) hideCallScreen();
    model.lastMessages[from] = video ? "[未接视频通话]" : "[未接语音通话]";
    model.bringSessionToTop(from);
    sessionsChanged();
    deliverMessage(from, video ? "[未接视频通话]" : "[未接语音通话]", true, video);
  });
}

}  // namespace hostapp
