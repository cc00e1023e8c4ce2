// Single hooks asked directly, where the host's later layers would hide a
// slip: what the host's own method is handed (recorded by putting a recorder
// behind the qb_ name), and gates that the upstream hooks normally pre-empt.
#include <gtest/gtest.h>

#include "sim/hostapp/host_app.hpp"
#include "notify/predicates.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"

namespace {

using rt::Id;
using rt::SEL;

struct Recorded {
  int calls = 0;
  bool silent = false;
};
Recorded gPush;
void recordPush(Id, SEL, Id, Id, Id, bool, bool silent) { ++gPush.calls, gPush.silent = silent; }
void recordPushShort(Id, SEL, Id, Id, bool) { ++gPush.calls; }

class DirectHooks : public qbtest::NotifyWorld {
 protected:
  void SetUp() override {
    NotifyWorld::SetUp();
    gPush = {};
  }
  // The host's method, as the hook reaches it, becomes `fn`.
  template <typename F>
  void recordBehind(const char* cls, const char* qbSelector, F fn) {
    rt::Method m = rt::getInstanceMethod(rt::getClass(cls), rt::sel(qbSelector));
    ASSERT_NE(m, nullptr);
    rt::setImplementation(m, reinterpret_cast<rt::IMP>(fn));
  }
  static Id fromBob() { return rt::dictionary({{rt::str("m_nsFromUsr"), rt::str("bob")}}); }
};

TEST_F(DirectHooks, VibrateOnlyPushIsHandedOnSilent) {
  launch();
  setMode(1);
  recordBehind(
      "MMLocalNotificationMgr",
      "qb_showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:", recordPush);
  device.notices().begin("bob", "message", "", 0);
  Id mgr = hostapp::hostService("MMLocalNotificationMgr");
  rt::send<void>(mgr, "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:",
                 fromBob(), rt::str("id"), Id{nullptr}, false, false);
  EXPECT_EQ(gPush.calls, 1);
  EXPECT_TRUE(gPush.silent);
  EXPECT_EQ(device.notices().latest("bob")->vibrations, 1);
  // From a VoIP push only the light block counts: both switches off drops it.
  rt::send<void>(mgr, "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:",
                 rt::dictionary({{rt::str("fromUserName"), rt::str("bob")}}), rt::str("id"),
                 Id{nullptr}, true, false);
  EXPECT_EQ(gPush.calls, 1);
}

TEST_F(DirectHooks, ThreeArgumentPushVibratesThenCallsTheHost) {
  host.build.variants.insert("push-3arg");
  launch();
  setMode(1);
  recordBehind("MMLocalNotificationMgr",
               "qb_showPushWithMessageWrap:fireDate:isFromVoipPush:", recordPushShort);
  device.notices().begin("bob", "message", "", 0);
  rt::send<void>(hostapp::hostService("MMLocalNotificationMgr"),
                 "showPushWithMessageWrap:fireDate:isFromVoipPush:", fromBob(), Id{nullptr}, false);
  EXPECT_EQ(gPush.calls, 1);
  EXPECT_EQ(device.notices().latest("bob")->vibrations, 1);
  setMode(0);
  rt::send<void>(hostapp::hostService("MMLocalNotificationMgr"),
                 "showPushWithMessageWrap:fireDate:isFromVoipPush:", fromBob(), Id{nullptr}, false);
  EXPECT_EQ(gPush.calls, 1);
}

TEST_F(DirectHooks, VibrationFallsBackToTheSystemSound) {
  host.build.lackingClasses.insert("AudioHelper");
  launch();
  device.notices().begin("x", "message", "", 0);
  notify::vibrate();
  EXPECT_EQ(device.notices().latest("x")->vibrations, 1);
  EXPECT_FALSE(device.notices().latest("x")->sound) << "4095 vibrates, it does not play";
}

TEST_F(DirectHooks, LocalNotificationGatesByItsOwnArguments) {
  launch();
  setMode(0);
  rt::Class util = rt::getClass("MMLocalNotificationUtil");
  const char* sel =
      "showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:date:"
      "threadIdentifier:"
      "fromUserName:fromNotFrient:showHeadImage:";
  auto show = [&](const char* from, const char* body) {
    device.notices().begin(from, "message", body, 0);
    rt::send<void>(util, sel, rt::str("id"), rt::str("c"), rt::str("T"), rt::str(body),
                   rt::str("default"), 1L, rt::dictionary({}), Id{nullptr}, Id{nullptr},
                   rt::str(from), false, true);
    return *device.notices().latest(from);
  };
  // Only the sender argument names the secret; the request the host builds
  // from it would pass the system's own check.
  EXPECT_EQ(show("bob", "hi").banner, "");
  EXPECT_EQ(show("alice", "hi").banner, "system");
  setMode(1);
  sim::Announcement a = show("bob", "hi");
  EXPECT_EQ(a.banner, "system");
  EXPECT_FALSE(a.sound);
  EXPECT_EQ(a.vibrations, 1);
  setMode(2);
  setSwitches(false, false);
  EXPECT_EQ(show("bob", "邀请你语音通话").banner, "");
  EXPECT_EQ(countLog("[QB] block local desktop/secret banner"), 2) << "mode 0 above, the call here";
}

int gLocalShown = 0;
void recordLocal(Id, SEL, Id, Id, Id, Id, Id, long, Id, Id, Id, Id, bool, bool) { ++gLocalShown; }

TEST_F(DirectHooks, LocalNotificationSecretOnlyInUserInfo) {
  launch();
  setMode(0);
  gLocalShown = 0;
  rt::Class util = rt::getClass("MMLocalNotificationUtil");
  std::string sel =
      "showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:date:"
      "threadIdentifier:"
      "fromUserName:fromNotFrient:showHeadImage:";
  rt::setImplementation(rt::getClassMethod(util, rt::sel("qb_" + sel)),
                        reinterpret_cast<rt::IMP>(recordLocal));
  auto show = [&](const char* user) {
    rt::send<void>(util, sel, rt::str("id"), rt::str("c"), rt::str("T"), rt::str("hi"),
                   rt::str("default"), 1L, rt::dictionary({{rt::str("username"), rt::str(user)}}),
                   Id{nullptr}, Id{nullptr}, Id{nullptr}, false, true);
  };
  show("bob");
  EXPECT_EQ(gLocalShown, 0);
  show("alice");
  EXPECT_EQ(gLocalShown, 1);
  config().setUnlocked(true);
  show("bob");
  EXPECT_EQ(gLocalShown, 2);
}

TEST_F(DirectHooks, CallBannerFollowsTheVoiceSwitchForAnyMessage) {
  launch();
  Id mono = hostapp::hostService("MonoServiceMsgMgr");
  auto banner = [&](Id m) {
    device.notices().begin("bob", "voice call", "", 0);
    rt::send<void>(mono, "showLocalNotificationWithMsg:repeatVibration:silently:", m, true, false);
    return device.notices().latest("bob")->banner;
  };
  Id plain = rt::dictionary({{rt::str("fromUserName"), rt::str("bob")}});
  EXPECT_EQ(banner(plain), "");
  EXPECT_EQ(banner(rt::dictionary({{rt::str("m_nsFromUsr"), rt::str("bob")}})), "");
  setSwitches(true, false);
  EXPECT_EQ(banner(plain), "in-app");
}

TEST_F(DirectHooks, CallWordsMarkALeftoverWithoutTheCallType) {
  launch();
  Id cancelled = rt::dictionary(
      {{rt::str("m_nsFromUsr"), rt::str("bob")}, {rt::str("m_nsContent"), rt::str("对方已取消")}});
  EXPECT_TRUE(notify::callLeftover(cancelled));
  EXPECT_FALSE(
      notify::callLeftover(rt::dictionary({{rt::str("m_nsFromUsr"), rt::str("bob")},
                                           {rt::str("m_nsContent"), rt::str("晚饭吃什么")}})));
  setSwitches(true, true);
  EXPECT_FALSE(notify::callLeftover(cancelled));
}

// Each of the host's names for the message type marks a call, words or not.
TEST_F(DirectHooks, EveryNameOfTheCallTypeMarksALeftover) {
  launch();
  for (const char* key : {"m_uiMessageType", "msgType", "messageType"}) {
    Id typed = rt::dictionary({{rt::str("m_nsFromUsr"), rt::str("bob")},
                               {rt::str(key), rt::number(50L)},
                               {rt::str("m_nsContent"), rt::str("晚饭吃什么")}});
    EXPECT_TRUE(notify::callLeftover(typed)) << key;
    EXPECT_FALSE(notify::callLeftover(
        rt::dictionary({{rt::str("m_nsFromUsr"), rt::str("bob")}, {rt::str(key), rt::number(1L)}})))
        << key;
  }
}

TEST_F(DirectHooks, QuickReplyTestLooksAtTheContactToo) {
  launch();
  Id mgr = hostapp::hostService("QuickReplyMsgMgr");
  Id bob = rt::dictionary({{rt::str("m_nsUsrName"), rt::str("bob")}});
  Id alice = rt::dictionary({{rt::str("m_nsUsrName"), rt::str("alice")}});
  EXPECT_FALSE(rt::send<bool>(mgr, "canShowPushForContact:msgWrap:", bob, Id{nullptr}));
  EXPECT_TRUE(rt::send<bool>(mgr, "canShowPushForContact:msgWrap:", alice, Id{nullptr}));
  EXPECT_FALSE(rt::send<bool>(mgr, "canShowPushAtViewController:sessionUserName:", Id{nullptr},
                              rt::str("bob")));
  setMode(1);
  EXPECT_TRUE(rt::send<bool>(mgr, "canShowPushAtViewController:sessionUserName:", Id{nullptr},
                             rt::str("bob")));
}

// The type argument: 1 and 2 are video, 0 is voice, a string never counts.
// In the background a blocked call is ended again after its report.
TEST_F(DirectHooks, CallKitTypeArgument) {
  launch();
  setSwitches(true, false);
  process->enterBackground();
  Id cx = rt::send<Id>(rt::getClass("VoipCXMgr"), "sharedInstance");
  auto ended = [&](Id type) {
    device.notices().begin("bob", "voice call", "", 0);
    rt::send<void>(cx,
                   "reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:",
                   rt::str("bob"), type, Id{nullptr}, false, Id{nullptr}, Id{nullptr});
    process->runDue();
    return recorded(device.notices().latestCall("bob")).ended;
  };
  EXPECT_TRUE(ended(rt::number(2)));
  EXPECT_TRUE(ended(rt::number(1)));
  EXPECT_FALSE(ended(rt::number(0)));
  EXPECT_FALSE(ended(rt::number(3)));
  EXPECT_FALSE(ended(rt::str("1")));
  setSwitches(false, true);
  EXPECT_TRUE(ended(rt::str("1"))) << "a string is voice";
  EXPECT_FALSE(ended(rt::number(1)));
}

}  // namespace
