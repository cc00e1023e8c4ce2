// A host build without one of the hooked selectors, or whose methods that
// the replacements call raise: the library still installs the rest, nothing
// escapes into the host, and the announcement proceeds as the host's.
#include <gtest/gtest.h>

#include "notify_world.hpp"

namespace {

const std::pair<const char*, const char*> kHooked[] = {
    {"QuickReplyMsgMgr", "canShowPushForContact:msgWrap:"},
    {"QuickReplyMsgMgr", "canShowPushAtViewController:sessionUserName:"},
    {"QuickReplyMsgMgr", "onNewMsgArriving:NotifyFlag:"},
    {"BaseMsgContentViewController", "shouldShowQuickReplyPush:"},
    {"QuickReplyMsgViewController", "showQuickReplyItem:dismissTimeout:"},
    {"MainFrameLogicController", "playNewMsgNotify:NotifyFlag:"},
    {"MMNewSessionMgr", "p_notifyNewMsg:withNotifyFlag:"},
    {"MMLocalNotificationUtil",
     "+showLocalNotificationWithIdentifier:category:title:body:soundName:badge:userInfo:date:"
     "threadIdentifier:"
     "fromUserName:fromNotFrient:showHeadImage:"},
    {"MMLocalNotificationMgr",
     "showPushWithMessageWrap:identifier:fireDate:isFromVoipPush:shouldSilent:"},
    {"MMLocalNotificationMgr",
     "notificationInfoForMessage:withEnabledNotificationSettings:isFromVoipPush:"},
    {"MMLocalNotificationMgr", "OnShowPush:isAlwaysShow:"},
    {"MonoServiceMsgMgr", "showLocalNotificationWithMsg:repeatVibration:silently:"},
    {"VoipCXMgr", "reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:"},
    {"VoIPPushKitNotifyService",
     "reportIncomingCallFromUser:ofType:withMsg:isPushKit:isMultitalk:"},
};

class MissingSelector : public qbtest::NotifyWorld,
                        public ::testing::WithParamInterface<std::pair<const char*, const char*>> {
};

TEST_P(MissingSelector, TheRestStillGates) {
  host.build.lackingMethods.insert({GetParam().first, GetParam().second});
  launch();
  setMode(0);
  EXPECT_EQ(countLog("[QB] notify+CallKit only (no invite hooks)"), 1);
  EXPECT_EQ(countLog(" ex: "), 0);
  // Whatever path is left, a hidden secret's message shows and sounds nothing.
  EXPECT_EQ(message("bob").banner, "");
  EXPECT_FALSE(device.notices().latest("bob")->sound);
  call("bob", false);
  process->enterBackground();
  EXPECT_EQ(message("bob").banner, "");
  EXPECT_FALSE(device.notices().latest("bob")->sound);
  wait(31);
}

INSTANTIATE_TEST_SUITE_P(EachHookedSelector, MissingSelector, ::testing::ValuesIn(kHooked));

TEST_F(MissingSelector, NoMessageClassAnnouncesNothingAndBreaksNothing) {
  host.build.lackingClasses.insert("CMessageWrap");
  launch();
  EXPECT_EQ(message("alice").banner, "");
  EXPECT_TRUE(call("alice", false).ringing);
  wait(31);
}

class RaisingHost : public qbtest::NotifyWorld {};

TEST_F(RaisingHost, VibrationHelperRaisingLetsTheHostAnnounce) {
  host.makeRaising("AudioHelper", "playVibration");
  launch();
  setMode(1);
  sim::Announcement a = message("bob");
  EXPECT_EQ(a.banner, "in-app");
  EXPECT_TRUE(a.sound) << "the host's own sound path answers when the vibration fails";
  EXPECT_FALSE(process->crashed());
}

TEST_F(RaisingHost, EndSelectorRaisingIsLoggedAndTheCallStays) {
  host.makeRaising("VoipCXMgr", "requestEndCallTrans");
  launch();
  process->enterBackground();
  call("bob", false);
  wait(0.2);
  EXPECT_EQ(countLog("[QB] end CallKit ex: "), 2);
  EXPECT_TRUE(latestCall("bob").ringing);
}

TEST_F(RaisingHost, ContactLookupsRaisingStillGateBySender) {
  host.makeRaising("CContactMgr", "getSelfContact");
  host.makeRaising("CContactMgr", "getSelfUserName");
  launch();
  setMode(0);
  EXPECT_EQ(message("bob").banner, "");
  EXPECT_EQ(message("alice").banner, "in-app");
}

TEST_F(RaisingHost, HostsOwnMethodRaisingIsTheHostsException) {
  host.makeRaising("QuickReplyMsgViewController", "showQuickReplyItem:dismissTimeout:");
  launch();
  process->runGuarded([&] { host.deliverMessage("alice", "hi"); });
  EXPECT_TRUE(process->crashed()) << "the library must not swallow the host's own exception";
  process.reset();
}

}  // namespace
