// The thirteen hooks on the host's message announcement paths: the in-app
// quick-reply banner and its tests, the in-app sound, the background push
// chain and the system notification request. Each decides from the
// predicates first and then asks the host's own method; whatever fails, the
// announcement proceeds as the host's.
#include <string>

#include "core/config.hpp"
#include "notify/notify_state.hpp"
#include "notify/predicates.hpp"
#include "notify/probes.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/log.hpp"
#include "sys/user_notifications.hpp"

namespace notify {
namespace {

using core::QBConfig;
using rt::SEL;

NotifyState& st() { return notifyState(); }
std::string text(Id s) { return rt::asString(s).value_or(""); }
bool hidden() { return QBConfig::shared().shouldHideSecrets(); }
long mode() { return QBConfig::shared().secretNotifyMode(); }

// --- QuickReplyMsgMgr and the chat screen: the in-app banner.

bool canShowPushForContact(Id self, SEL cmd, Id contact, Id msgWrap) {
  return st().canShowPushForContact.run(
      "[QB] QuickReplyMsgMgr canShowPushForContact:msgWrap: ex: %@",
      [&](auto& original) -> bool {
        if (blocked(msgWrap) || blocked(contact)) return false;
        return original(contact, msgWrap);
      },
      self, cmd, contact, msgWrap);
}

bool canShowPushAtViewController(Id self, SEL cmd, Id controller, Id sessionUserName) {
  return st().canShowPushAtViewController.run(
      "[QB] QuickReplyMsgMgr canShowPushAtViewController:sessionUserName: ex: %@",
      [&](auto& original) -> bool {
        if (isSecret(text(sessionUserName)) && hidden() && mode() == 0) return false;
        return original(controller, sessionUserName);
      },
      self, cmd, controller, sessionUserName);
}

// The in-app arrival and both sound paths share one rule; only whether the
// host still runs after a vibration differs.
template <typename Body>
void gateArrival(Id m, bool hostAfterVibration, Body&& host) {
  if (blocked(m)) return;
  if (vibrateOnly(m)) {
    vibrate();
    if (hostAfterVibration) host();
    return;
  }
  if (muted(m)) return;
  host();
}

template <typename Int>
void onNewMsgArriving(Id self, SEL cmd, Id m, Int flag) {
  integerHooks<Int>().onNewMsgArriving.run(
      "[QB] QuickReplyMsgMgr onNewMsgArriving:NotifyFlag: ex: %@",
      [&](auto& original) { gateArrival(m, true, [&] { original(m, flag); }); }, self, cmd, m,
      flag);
}

bool shouldShowQuickReplyPush(Id self, SEL cmd, Id m) {
  return st().shouldShowQuickReplyPush.run(
      "[QB] BaseMsgContentViewController shouldShowQuickReplyPush: ex: %@",
      [&](auto& original) -> bool { return blocked(m) ? false : original(m); }, self, cmd, m);
}

void showQuickReplyItem(Id self, SEL cmd, Id item, double timeout) {
  st().showQuickReplyItem.run(
      "[QB] QuickReplyMsgViewController showQuickReplyItem:dismissTimeout: ex: %@",
      [&](auto& original) {
        if (!blocked(item)) original(item, timeout);
      },
      self, cmd, item, timeout);
}

template <typename Int>
void playNewMsgNotify(Id self, SEL cmd, Id m, Int flag) {
  integerHooks<Int>().playNewMsgNotify.run(
      "[QB] MainFrameLogicController playNewMsgNotify:NotifyFlag: ex: %@",
      [&](auto& original) { gateArrival(m, false, [&] { original(m, flag); }); }, self, cmd, m,
      flag);
}

template <typename Int>
void notifyNewMsg(Id self, SEL cmd, Id m, Int flag) {
  integerHooks<Int>().notifyNewMsg.run(
      "[QB] MMNewSessionMgr p_notifyNewMsg:withNotifyFlag: ex: %@",
      [&](auto& original) { gateArrival(m, false, [&] { original(m, flag); }); }, self, cmd, m,
      flag);
}

// --- MMLocalNotificationUtil (class method): the local notification itself.

template <typename Int>
void showLocalNotification(Id self, SEL cmd, Id identifier, Id category, Id title, Id body,
                           Id soundName, Int badge, Id userInfo, Id date, Id thread,
                           Id fromUserName, bool notFriend, bool showHead) {
  integerHooks<Int>().showLocalNotification.run(
      "[QB] MMLocalNotificationUtil showLocalNotificationWithIdentifier: ex: %@",
      [&](auto& original) {
        if (callDetectionBlocks(text(fromUserName), text(title), text(body), userInfo,
                                text(thread))) {
          sys::log("[QB] block local desktop/secret banner");
          return;
        }
        bool secret =
            isSecret(text(fromUserName)) || userInfoHoldsSecret(userInfo) || isSecret(text(thread));
        if (secret && hidden() && mode() == 0) return;
        if (secret && hidden() && mode() == 1) {
          vibrate();
          original(identifier, category, title, body, nullptr, badge, userInfo, date, thread,
                   fromUserName, notFriend, showHead);
          return;
        }
        original(identifier, category, title, body, soundName, badge, userInfo, date, thread,
                 fromUserName, notFriend, showHead);
      },
      self, cmd, identifier, category, title, body, soundName, badge, userInfo, date, thread,
      fromUserName, notFriend, showHead);
}

// --- MMLocalNotificationMgr: the background push chain.

void showPush(Id self, SEL cmd, Id m, Id identifier, Id fireDate, bool fromVoip, bool silent) {
  st().showPush.run(
      "[QB] MMLocalNotificationMgr showPushWithMessageWrap:identifier: ex: %@",
      [&](auto& original) {
        if (fromVoip) {
          if (!voipPushLightBlock(m)) original(m, identifier, fireDate, fromVoip, silent);
          return;
        }
        if (callLeftover(m) || hiddenSecretDrop(m)) return;
        if (vibrateOnly(m)) {
          vibrate();
          original(m, identifier, fireDate, fromVoip, true);
          return;
        }
        original(m, identifier, fireDate, fromVoip, silent);
      },
      self, cmd, m, identifier, fireDate, fromVoip, silent);
}

void showPushShort(Id self, SEL cmd, Id m, Id fireDate, bool fromVoip) {
  st().showPushShort.run(
      "[QB] MMLocalNotificationMgr showPushWithMessageWrap:fireDate: ex: %@",
      [&](auto& original) {
        if (fromVoip) {
          if (!voipPushLightBlock(m)) original(m, fireDate, fromVoip);
          return;
        }
        if (callLeftover(m) || hiddenSecretDrop(m)) return;
        if (vibrateOnly(m)) vibrate();
        original(m, fireDate, fromVoip);
      },
      self, cmd, m, fireDate, fromVoip);
}

template <typename Int>
Id notificationInfo(Id self, SEL cmd, Id m, Int settings, bool fromVoip) {
  return integerHooks<Int>().notificationInfo.run(
      "[QB] MMLocalNotificationMgr notificationInfoForMessage: ex: %@",
      [&](auto& original) -> Id {
        if (fromVoip && voipPushLightBlock(m)) {
          sys::log("[QB] nil notificationInfo (voip light)");
          return nullptr;
        }
        if (callLeftover(m)) {
          sys::log("[QB] nil notificationInfo (aftermath)");
          return nullptr;
        }
        if (hiddenSecretDrop(m)) {
          sys::log("[QB] nil notificationInfo (hidden secret bg)");
          return nullptr;
        }
        return original(m, settings, fromVoip);
      },
      self, cmd, m, settings, fromVoip);
}

void onShowPush(Id self, SEL cmd, Id m, bool always) {
  st().onShowPush.run(
      "[QB] MMLocalNotificationMgr OnShowPush:isAlwaysShow: ex: %@",
      [&](auto& original) {
        if (callLeftover(m)) {
          sys::log("[QB] block OnShowPush (aftermath)");
          return;
        }
        if (hiddenSecretDrop(m)) {
          sys::log("[QB] block OnShowPush (hidden secret bg)");
          return;
        }
        original(m, always);
      },
      self, cmd, m, always);
}

// --- UNUserNotificationCenter: the request the system would show.

void addNotificationRequest(Id self, SEL cmd, Id request, Id completion) {
  st().addNotificationRequest.run(
      "[QB] UNUserNotificationCenter addNotificationRequest:withCompletionHandler: ex: %@",
      [&](auto& original) {
        Id content = rt::send<Id>(request, "content");
        Id userInfo = rt::send<Id>(content, "userInfo");
        std::string thread = text(rt::send<Id>(content, "threadIdentifier"));
        std::string caller = callCaller(userInfo);
        std::string title = text(rt::send<Id>(content, "title")),
                    body = text(rt::send<Id>(content, "body"));
        if (callDetectionBlocks(caller, title, body, userInfo, thread)) {
          sys::callNotificationCompletion(completion, nullptr);
          return;
        }
        if (partsNameSecret(userInfo, thread) && hidden()) {
          if (mode() == 0) {
            sys::callNotificationCompletion(completion, nullptr);
            return;
          }
          if (mode() == 1) {
            vibrate();
            // The copy is ours (+1); the request keeps its own hold on it.
            rt::Strong silent = rt::Strong::adopt(rt::send<Id>(content, "mutableCopy"));
            rt::send<void>(silent.get(), "setSound:", Id{nullptr});
            Id quiet = rt::send<Id>(
                rt::getClass("UNNotificationRequest"),
                "requestWithIdentifier:content:trigger:", rt::send<Id>(request, "identifier"),
                silent.get(), rt::send<Id>(request, "trigger"));
            original(quiet, completion);
            return;
          }
        }
        original(request, completion);
      },
      self, cmd, request, completion);
}

constexpr const char* kLocalNotificationSelector =
    "showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:date:"
    "threadIdentifier:"
    "fromUserName:fromNotFrient:showHeadImage:";

}  // namespace

rt::Class categoryOwner() { return rt::getClass("NSObject"); }

void installMessageHooks() {
  NotifyState& s = st();
  exchangeRow(s.canShowPushForContact, "QuickReplyMsgMgr",
              "canShowPushForContact:msgWrap:", canShowPushForContact);
  exchangeRow(s.canShowPushAtViewController, "QuickReplyMsgMgr",
              "canShowPushAtViewController:sessionUserName:", canShowPushAtViewController);
  exchangeIntegerRow(s.wide.onNewMsgArriving, onNewMsgArriving<long>, s.narrow.onNewMsgArriving,
                     onNewMsgArriving<unsigned>, "QuickReplyMsgMgr",
                     "onNewMsgArriving:NotifyFlag:");
  exchangeRow(s.shouldShowQuickReplyPush, "BaseMsgContentViewController",
              "shouldShowQuickReplyPush:", shouldShowQuickReplyPush);
  exchangeRow(s.showQuickReplyItem, "QuickReplyMsgViewController",
              "showQuickReplyItem:dismissTimeout:", showQuickReplyItem);
  exchangeIntegerRow(s.wide.playNewMsgNotify, playNewMsgNotify<long>, s.narrow.playNewMsgNotify,
                     playNewMsgNotify<unsigned>, "MainFrameLogicController",
                     "playNewMsgNotify:NotifyFlag:");
  exchangeIntegerRow(s.wide.notifyNewMsg, notifyNewMsg<long>, s.narrow.notifyNewMsg,
                     notifyNewMsg<unsigned>, "MMNewSessionMgr", "p_notifyNewMsg:withNotifyFlag:");
  if (rt::Class util = rt::getClass("MMLocalNotificationUtil")) {
    if (rt::Method m = rt::getClassMethod(util, rt::sel(kLocalNotificationSelector))) {
      const char* types = rt::typeEncoding(m);
      std::string qb = std::string("qb_") + kLocalNotificationSelector;
      if (!s.wide.showLocalNotification.fits(m) && s.narrow.showLocalNotification.fits(m))
        s.narrow.showLocalNotification.exchangeClassMethod(util, kLocalNotificationSelector, qb,
                                                           showLocalNotification<unsigned>,
                                                           types ? types : "v@:");
      else
        s.wide.showLocalNotification.exchangeClassMethod(util, kLocalNotificationSelector, qb,
                                                         showLocalNotification<long>,
                                                         types ? types : "v@:");
    }
  }
  exchangeRow(s.showPush, "MMLocalNotificationMgr",
              "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:", showPush);
  exchangeRow(s.showPushShort, "MMLocalNotificationMgr",
              "showPushWithMessageWrap:fireDate:isFromVoipPush:", showPushShort);
  exchangeIntegerRow(s.wide.notificationInfo, notificationInfo<long>, s.narrow.notificationInfo,
                     notificationInfo<unsigned>, "MMLocalNotificationMgr",
                     "notificationInfoForMessage:withEnabledNotificationSettings:isFromVoipPush:");
  exchangeRow(s.onShowPush, "MMLocalNotificationMgr", "OnShowPush:isAlwaysShow:", onShowPush);
  exchangeRow(s.addNotificationRequest, "UNUserNotificationCenter",
              "addNotificationRequest:withCompletionHandler:", addNotificationRequest);
}

}  // namespace notify
