// The host's message announcement paths. While the app is active a message
// from any chat but the open one goes through the quick-reply manager (the
// in-app banner, after its three "may I" tests) and then the session
// manager's notify step (the sound); in the background it goes through the
// local-notification manager's push chain down to a system notification
// request. A nil or NO answer on the way stops that path, as in the host;
// a method this build lacks is not called.
#include "sim/hostapp/banner_view.hpp"
#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/process.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

// What the host knows of its own message object, whichever keys it carries.
struct HostMessage {
  std::string from, to, text;
  long type = 1;
  bool video = false;
};

constexpr long kTextType = 1;
constexpr long kVoipType = 50;
constexpr double kQuickReplyTimeout_s = 3.0;

sim::Notices& notices() { return sim::currentProcess().device().notices(); }
HostApp& app() { return HostApp::current(); }

const HostMessage* message(Id m) { return sim::native<HostMessage>(m); }

bool responds(Id obj, const char* selector) {
  return obj && rt::respondsTo(obj, rt::sel(selector));
}

// --- QuickReplyMsgMgr: the in-app banner.
bool canShowPushForContact(Id, SEL, Id, Id) { return true; }
// Not over the chat the message belongs to.
bool canShowPushAtViewController(Id, SEL, Id controller, Id session) {
  if (!rt::isKindOf(controller, "BaseMsgContentViewController")) return true;
  Id shown = rt::ivarNamed(controller, "m_nsUsrName");
  return !rt::isEqual(shown, session);
}
template <typename Int>
void onNewMsgArriving(Id self, SEL, Id m, Int) {
  const HostMessage* msg = message(m);
  if (!msg) return;
  Id contactMgr = hostService("CContactMgr");
  Id contact = responds(contactMgr, "getContactByName:")
                   ? rt::send<Id>(contactMgr, "getContactByName:", rt::str(msg->from))
                   : nullptr;
  if (!responds(self, "canShowPushForContact:msgWrap:") ||
      !rt::send<bool>(self, "canShowPushForContact:msgWrap:", contact, m))
    return;
  Id top = sim::topController();
  if (!responds(self, "canShowPushAtViewController:sessionUserName:") ||
      !rt::send<bool>(self, "canShowPushAtViewController:sessionUserName:", top,
                      rt::str(msg->from)))
    return;
  if (rt::isKindOf(top, "BaseMsgContentViewController") &&
      (!responds(top, "shouldShowQuickReplyPush:") ||
       !rt::send<bool>(top, "shouldShowQuickReplyPush:", m)))
    return;
  // The banner shows an item that wraps the message.
  // Let go of when the banner has taken what it shows, as ARC would.
  Id item = sim::autorelease(rt::send<Id>(rt::getClass("QuickReplyItem"), "new"));
  rt::setIvarNamed(item, "msgWrap", m);
  Id banner = hostService("QuickReplyMsgViewController");
  if (responds(banner, "showQuickReplyItem:dismissTimeout:"))
    rt::send<void>(banner, "showQuickReplyItem:dismissTimeout:", item, kQuickReplyTimeout_s);
}
// The build whose arrival method takes one more object (the session).
template <typename Int>
void onNewMsgArrivingChanged(Id self, SEL cmd, Id m, Int flag, Id) {
  onNewMsgArriving<Int>(self, cmd, m, flag);
}
bool shouldShowQuickReplyPush(Id, SEL, Id) { return true; }
void showQuickReplyItem(Id, SEL, Id item, double timeout) {
  if (!item) return;
  notices().banner("in-app");
  Id m = rt::ivarNamed(item, "msgWrap");
  if (const HostMessage* msg = message(m))
    showBannerView(HostApp::current().displayName(msg->from), msg->text, timeout);
}

// --- The sound: the session manager's notify step asks the main frame's logic.
template <typename Int>
void notifyNewMsg(Id, SEL, Id m, Int flag) {
  Id logic = hostService("MainFrameLogicController");
  if (responds(logic, "playNewMsgNotify:NotifyFlag:"))
    rt::send<void>(logic, "playNewMsgNotify:NotifyFlag:", m, flag);
}
template <typename Int>
void playNewMsgNotify(Id, SEL, Id m, Int) {
  if (m) notices().sound();
}

// --- MMLocalNotificationMgr: the background chain.
template <typename Int>
Id notificationInfo(Id, SEL, Id m, Int, bool) {
  const HostMessage* msg = message(m);
  if (!msg) return nullptr;
  return rt::dictionary(
      {{rt::str("fromUserName"), rt::str(msg->from)}, {rt::str("content"), rt::str(msg->text)}});
}

void showLocal(Id m, Id identifier, bool silent) {
  const HostMessage* msg = message(m);
  rt::Class util = rt::getClass("MMLocalNotificationUtil");
  const char* sel =
      "showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:date:"
      "threadIdentifier:"
      "fromUserName:fromNotFrient:showHeadImage:";
  if (!msg || !util || !rt::respondsTo(rt::toId(util), rt::sel(sel))) return;
  Id userInfo = rt::dictionary(
      {{rt::str("fromUserName"), rt::str(msg->from)}, {rt::str("msgType"), rt::number(msg->type)}});
  std::string title = app().displayName(msg->from);
  withHostInteger(app().build, [&](auto zero) {
    rt::send<void>(util, sel, identifier, rt::str("message"), rt::str(title), rt::str(msg->text),
                   silent ? Id{nullptr} : rt::str("default"), decltype(zero)(1), userInfo,
                   Id{nullptr}, rt::str(msg->from), rt::str(msg->from), false, true);
  });
}
void showPush(Id, SEL, Id m, Id identifier, Id, bool, bool silent) {
  showLocal(m, identifier, silent);
}
void showPushShort(Id, SEL, Id m, Id, bool) { showLocal(m, rt::str("push"), false); }

void onShowPush(Id self, SEL, Id m, bool) {
  const char* infoSel =
      "notificationInfoForMessage:withEnabledNotificationSettings:isFromVoipPush:";
  if (!m || !responds(self, infoSel)) return;
  Id info = nullptr;
  withHostInteger(app().build, [&](auto zero) {
    info = rt::send<Id>(self, infoSel, m, decltype(zero)(7), false);
  });
  if (!info) return;
  Id identifier = rt::str("msg-" + std::to_string(++app().model.lastMessageId));
  if (responds(self, "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:"))
    rt::send<void>(self,
                   "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:", m,
                   identifier, Id{nullptr}, false, false);
  else if (responds(self, "showPushWithMessageWrap:fireDate:isFromVoipPush:"))
    rt::send<void>(self, "showPushWithMessageWrap:fireDate:isFromVoipPush:", m, Id{nullptr}, false);
}

// --- MMLocalNotificationUtil: builds the system request.
template <typename Int>
void showLocalNotification(Id, SEL, Id identifier, Id, Id title, Id body, Id soundName, Int,
                           Id userInfo, Id, Id thread, Id, bool, bool) {
  Id content = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
  rt::send<void>(content, "setTitle:", title);
  rt::send<void>(content, "setBody:", body);
  rt::send<void>(
      content, "setSound:",
      soundName ? rt::send<Id>(rt::getClass("UNNotificationSound"), "defaultSound") : Id{nullptr});
  rt::send<void>(content, "setUserInfo:", userInfo);
  rt::send<void>(content, "setThreadIdentifier:", thread);
  Id request =
      rt::send<Id>(rt::getClass("UNNotificationRequest"),
                   "requestWithIdentifier:content:trigger:", identifier, content, Id{nullptr});
  Id center = rt::send<Id>(rt::getClass("UNUserNotificationCenter"), "currentNotificationCenter");
  rt::send<void>(center, "addNotificationRequest:withCompletionHandler:", request,
                 sim::makeCompletionBlock([](Id) {}));
}

// --- AudioHelper
void playVibration(Id, SEL) { notices().vibrate(); }

}  // namespace

// The message object, with this build's keys.
Id makeHostMessage(const std::string& from, const std::string& text, bool call, bool video) {
  HostApp& a = app();
  Id m = rt::send<Id>(rt::getClass("CMessageWrap"), "new");
  if (!m) return nullptr;  // a build without the class announces nothing
  HostMessage msg{from, a.model.me, text, call ? kVoipType : kTextType, video};
  bool alt = a.build.hasVariant("message-keys-alt");
  rt::setIvarNamed(m, alt ? "fromUserName" : "m_nsFromUsr", rt::str(from));
  rt::setIvarNamed(m, alt ? "toUserName" : "m_nsToUsr", rt::str(a.model.me));
  rt::setIvarNamed(m, alt ? "content" : "m_nsContent", rt::str(text));
  rt::setIvarNamed(m, alt ? "msgType" : "m_uiMessageType", rt::number(msg.type));
  // The alternative build also names the receiving account, which a probe
  // that skipped the sender keys would take for the sender.
  if (alt) rt::setIvarNamed(m, "userName", rt::str(a.model.me));
  m->native = msg;
  return m;
}

void defineNotificationClasses(HostApp& app) {
  if (app.build.hasVariant("message-keys-alt")) {
    HostClass(app, "CMessageWrap")
        .ivar("fromUserName", "@")
        .ivar("toUserName", "@")
        .ivar("content", "@")
        .ivar("msgType", "@")
        .ivar("userName", "@")
        .build();
  } else {
    HostClass(app, "CMessageWrap")
        .ivar("m_nsFromUsr", "@")
        .ivar("m_nsToUsr", "@")
        .ivar("m_nsContent", "@")
        .ivar("m_uiMessageType", "@")
        .build();
  }
  withHostInteger(app.build, [&](auto zero) {
    using Int = decltype(zero);
    HostClass quickReply(app, "QuickReplyMsgMgr");
    if (app.build.hasVariant("notify-args-changed"))
      quickReply.method("onNewMsgArriving:NotifyFlag:", onNewMsgArrivingChanged<Int>);
    else
      quickReply.method("onNewMsgArriving:NotifyFlag:", onNewMsgArriving<Int>);
    quickReply.method("canShowPushForContact:msgWrap:", canShowPushForContact)
        .method("canShowPushAtViewController:sessionUserName:", canShowPushAtViewController)
        .build();
    HostClass(app, "MMNewSessionMgr")
        .method("p_notifyNewMsg:withNotifyFlag:", notifyNewMsg<Int>)
        .build();
    HostClass(app, "MainFrameLogicController")
        .method("playNewMsgNotify:NotifyFlag:", playNewMsgNotify<Int>)
        .build();
  });
  HostClass(app, "QuickReplyItem").ivar("msgWrap", "@").build();
  HostClass(app, "QuickReplyMsgViewController", "UIViewController")
      .method("showQuickReplyItem:dismissTimeout:", showQuickReplyItem)
      .build();
  HostClass(app, "BaseMsgContentViewController", "UIViewController")
      .method("shouldShowQuickReplyPush:", shouldShowQuickReplyPush)
      .build();
  HostClass push(app, "MMLocalNotificationMgr");
  push.method("OnShowPush:isAlwaysShow:", onShowPush);
  withHostInteger(app.build, [&](auto zero) {
    push.method("notificationInfoForMessage:withEnabledNotificationSettings:isFromVoipPush:",
                notificationInfo<decltype(zero)>);
  });
  if (app.build.hasVariant("push-3arg"))
    push.method("showPushWithMessageWrap:fireDate:isFromVoipPush:", showPushShort);
  else
    push.method("showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:",
                showPush);
  push.build();
  withHostInteger(app.build, [&](auto zero) {
    HostClass(app, "MMLocalNotificationUtil")
        .classMethod(
            "showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:"
            "date:threadIdentifier:fromUserName:fromNotFrient:showHeadImage:",
            showLocalNotification<decltype(zero)>)
        .build();
  });
  HostClass(app, "AudioHelper").classMethod("playVibration", playVibration).build();
}

std::string HostApp::openChatUsername() const {
  Id top = sim::topController();
  if (!rt::isKindOf(top, "BaseMsgContentViewController")) return "";
  Id name = rt::ivarNamed(top, "m_nsUsrName");
  return rt::asString(name).value_or("");
}

sim::SystemNotification HostApp::remoteNotification(const std::string& from,
                                                    const std::string& text,
                                                    const std::string& bundleIdentifier) {
  sim::SystemNotification n;
  n.bundleIdentifier = bundleIdentifier;
  n.identifier = "push-" + std::to_string(++model.lastMessageId);
  n.title = displayName(from);
  n.body = text;
  n.threadIdentifier = from;
  n.userInfo = base::Value(
      base::Dictionary{{"fromUserName", base::Value(from)}, {"msgType", base::Value(kTextType)}});
  n.sound = true;
  return n;
}

void HostApp::deliverMessage(const std::string& from, const std::string& text, bool missedCall,
                             bool video) {
  sim::Process& p = sim::currentProcess();
  notices().begin(from, "message", text, p.device().localSecondOfDay());
  donateMessage(from, text, false);
  Id m = makeHostMessage(from, text, missedCall, video);
  if (p.appState() == sim::AppState::Active) {
    Id quickReply = hostService("QuickReplyMsgMgr");
    withHostInteger(build, [&](auto zero) {
      using Int = decltype(zero);
      if (openChatUsername() != from && responds(quickReply, "onNewMsgArriving:NotifyFlag:")) {
        if (build.hasVariant("notify-args-changed"))
          rt::send<void>(quickReply, "onNewMsgArriving:NotifyFlag:", m, Int(1), rt::str(from));
        else
          rt::send<void>(quickReply, "onNewMsgArriving:NotifyFlag:", m, Int(1));
      }
      Id sessions = hostService("MMNewSessionMgr");
      if (responds(sessions, "p_notifyNewMsg:withNotifyFlag:"))
        rt::send<void>(sessions, "p_notifyNewMsg:withNotifyFlag:", m, Int(1));
    });
    return;
  }
  Id push = hostService("MMLocalNotificationMgr");
  if (responds(push, "OnShowPush:isAlwaysShow:"))
    rt::send<void>(push, "OnShowPush:isAlwaysShow:", m, false);
}

}  // namespace hostapp
