// Message gating through the host's own paths: in-app while active, the
// local-notification chain in the background, by notify mode and state.
#include <gtest/gtest.h>

#include "hostapp/host_app.hpp"
#include "notify/notify_hooks.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/user_notifications.hpp"

namespace {

class Gating : public qbtest::NotifyWorld {};

TEST_F(Gating, NonSecretMessagesAreTheHosts) {
  launch();
  sim::Announcement a = message("alice");
  EXPECT_EQ(a.banner, "in-app");
  EXPECT_TRUE(a.sound);
  EXPECT_EQ(a.vibrations, 0);
  process->enterBackground();
  a = message("alice");
  EXPECT_EQ(a.banner, "system");
  EXPECT_TRUE(a.sound);
}

TEST_F(Gating, HiddenModeZeroDropsEverywhere) {
  launch();
  setMode(0);
  sim::Announcement a = message("bob");
  EXPECT_EQ(a.banner, "");
  EXPECT_FALSE(a.sound);
  EXPECT_EQ(a.vibrations, 0);
  process->enterBackground();
  a = message("bob");
  EXPECT_EQ(a.banner, "");
  EXPECT_FALSE(a.sound);
  EXPECT_EQ(countLog("[QB] block OnShowPush (hidden secret bg)"), 1);
}

TEST_F(Gating, RevealedModeZeroAnnouncesNormally) {
  launch();
  setMode(0);
  config().setUnlocked(true);
  sim::Announcement a = message("bob");
  EXPECT_EQ(a.banner, "in-app");
  EXPECT_TRUE(a.sound);
}

TEST_F(Gating, HiddenModeOneVibratesWithoutSound) {
  launch();
  setMode(1);
  sim::Announcement a = message("bob");
  EXPECT_EQ(a.banner, "in-app");
  EXPECT_FALSE(a.sound) << "the in-app sound path is suppressed";
  EXPECT_GE(a.vibrations, 1);
  process->enterBackground();
  a = message("bob");
  EXPECT_EQ(a.banner, "system");
  EXPECT_FALSE(a.sound);
  EXPECT_GE(a.vibrations, 1);
}

TEST_F(Gating, HiddenModeTwoRings) {
  launch();
  setMode(2);
  EXPECT_TRUE(message("bob").sound);
  process->enterBackground();
  EXPECT_TRUE(message("bob").sound);
}

TEST_F(Gating, ThreeArgumentPushAndAlternativeKeysGateTheSame) {
  host.build.variants = {"push-3arg", "message-keys-alt"};
  launch();
  setMode(1);
  process->enterBackground();
  sim::Announcement a = message("bob");
  EXPECT_EQ(a.banner, "system");
  EXPECT_FALSE(a.sound);
  EXPECT_GE(a.vibrations, 1);
  setMode(0);
  EXPECT_EQ(message("bob").banner, "");
  EXPECT_EQ(message("alice").banner, "system");
}

TEST_F(Gating, OpenChatTakesOnlyTheSoundPath) {
  launch();
  process->runGuarded([&] { host.openChat("alice"); });
  sim::Announcement a = message("alice");
  EXPECT_EQ(a.banner, "");
  EXPECT_TRUE(a.sound);
  // From another chat the banner comes over the open one.
  EXPECT_EQ(message("carol").banner, "in-app");
}

// The system request on its own: one vibration and no sound in mode 1; in
// mode 0 the completion runs and nothing is added.
class SystemRequest : public qbtest::NotifyWorld {
 protected:
  rt::Id request(rt::Id userInfo, const char* thread, const char* body = "hello") {
    rt::Id content = rt::send<rt::Id>(rt::getClass("UNMutableNotificationContent"), "new");
    rt::send<void>(content, "setTitle:", rt::str("Someone"));
    rt::send<void>(content, "setBody:", rt::str(body));
    rt::send<void>(content, "setSound:",
                   rt::send<rt::Id>(rt::getClass("UNNotificationSound"), "defaultSound"));
    rt::send<void>(content, "setUserInfo:", userInfo);
    rt::send<void>(content, "setThreadIdentifier:", rt::str(thread));
    return rt::send<rt::Id>(rt::getClass("UNNotificationRequest"),
                            "requestWithIdentifier:content:trigger:", rt::str("r1"), content,
                            rt::Id{nullptr});
  }
  // Adds through the center; returns whether the completion ran.
  bool add(rt::Id req) {
    bool completed = false;
    device.notices().begin("x", "message", "", 0);
    rt::Id center =
        rt::send<rt::Id>(rt::getClass("UNUserNotificationCenter"), "currentNotificationCenter");
    rt::send<void>(center, "addNotificationRequest:withCompletionHandler:", req,
                   sim::makeCompletionBlock([&](rt::Id) { completed = true; }));
    return completed;
  }
  sim::Announcement last() { return *device.notices().latest("x"); }
  static rt::Id info(std::vector<std::pair<rt::Id, rt::Id>> e) { return rt::dictionary(e); }
};

TEST_F(SystemRequest, ModeOneAddsASilentCopyAndVibratesOnce) {
  launch();
  setMode(1);
  rt::Id req = request(info({{rt::str("fromUserName"), rt::str("bob")}}), "");
  EXPECT_TRUE(add(req));
  EXPECT_EQ(last().banner, "system");
  EXPECT_FALSE(last().sound);
  EXPECT_EQ(last().vibrations, 1);
  // The host's own request is left as it was.
  EXPECT_NE(rt::send<rt::Id>(rt::send<rt::Id>(req, "content"), "sound"), nullptr);
}

TEST_F(SystemRequest, ModeZeroCompletesWithoutAdding) {
  launch();
  setMode(0);
  EXPECT_TRUE(add(request(info({}), "bob")));
  EXPECT_EQ(last().banner, "");
  config().setUnlocked(true);
  add(request(info({}), "bob"));
  EXPECT_EQ(last().banner, "system");
  EXPECT_TRUE(last().sound);
}

TEST_F(SystemRequest, SecretOnlyInANestedDictionaryStillCounts) {
  launch();
  setMode(0);
  rt::Id nested = info(
      {{rt::str("aps"), info({{rt::str("meta"), info({{rt::str("peer"), rt::str("bob")}})}})}});
  add(request(nested, ""));
  EXPECT_EQ(last().banner, "");
  add(request(info({{rt::str("aps"), info({{rt::str("peer"), rt::str("alice")}})}}), ""));
  EXPECT_EQ(last().banner, "system");
}

TEST_F(SystemRequest, EmptyUsernameNeverCounts) {
  launch();
  setMode(0);
  config().addSecretUser("");
  add(request(info({{rt::str("fromUserName"), rt::str("")}}), ""));
  EXPECT_EQ(last().banner, "system");
}

TEST_F(SystemRequest, MissedCallBannerOfASecretIsDroppedEvenRevealed) {
  launch();
  setMode(2);
  config().setUnlocked(true);
  setSwitches(false, false);
  add(request(info({{rt::str("fromUserName"), rt::str("bob")}}), "bob", "[未接语音通话]"));
  EXPECT_EQ(last().banner, "");
  // With the voice switch on the same missed voice call may show.
  setSwitches(true, false);
  add(request(info({{rt::str("fromUserName"), rt::str("bob")}}), "bob", "[未接语音通话]"));
  EXPECT_EQ(last().banner, "system");
}

TEST_F(Gating, MissedCallMessageFollowsTheSwitchesWhileRevealed) {
  launch();
  setMode(2);
  config().setUnlocked(true);
  setSwitches(false, false);
  process->runGuarded([&] { host.deliverMessage("bob", "[未接视频通话]", true, true); });
  EXPECT_EQ(device.notices().latest("bob")->banner, "");
  setSwitches(false, true);
  process->runGuarded([&] { host.deliverMessage("bob", "[未接视频通话]", true, true); });
  EXPECT_EQ(device.notices().latest("bob")->banner, "in-app");
}

TEST_F(Gating, BannerItemIsJudgedByTheMessageItWraps) {
  launch();
  setMode(0);
  auto show = [&](const char* from) {
    rt::Id m = rt::dictionary({{rt::str("m_nsFromUsr"), rt::str(from)}});
    rt::Id item = rt::dictionary({{rt::str("msgWrap"), m}});
    device.notices().begin(from, "message", "", 0);
    rt::send<void>(hostapp::hostService("QuickReplyMsgViewController"),
                   "showQuickReplyItem:dismissTimeout:", item, 3.0);
    return device.notices().latest(from)->banner;
  };
  EXPECT_EQ(show("bob"), "");
  EXPECT_EQ(show("alice"), "in-app");
}

TEST_F(Gating, InstallsOnceAndSyncOnlyLogs) {
  launch();
  notify::QBNotifyHooks::install();
  EXPECT_EQ(countLog("[QB] notify+CallKit only (no invite hooks)"), 1);
  setMode(0);
  EXPECT_EQ(message("bob").banner, "") << "a second install would exchange the methods back";
  notify::QBNotifyHooks::syncVoipAutoIgnore();
  EXPECT_EQ(countLog("[QB] VoIPIgnore sync skipped (safe mode)"), 1);
}

}  // namespace
