// Message gating through the host's own paths: in-app while active, the
// local-notification chain in the background, by notify mode and state.
#include <gtest/gtest.h>

#include "sim/hostapp/host_app.hpp"
#include "notify/notify_hooks.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace {

class Gating : public qbtest::NotifyWorld {};

// What a person notices of one message, active and then in the background,
// by sender, notify mode and reveal state.
struct GridRow {
  const char* from;
  long mode;
  bool revealed;
  sim::Announcement active, background;  // banner, sound, vibrations
};

sim::Announcement noticed(const char* banner, bool sound, int vibrations) {
  sim::Announcement a;
  a.banner = banner;
  a.sound = sound;
  a.vibrations = vibrations;
  return a;
}

TEST_F(Gating, TheGridOfSenderModeAndState) {
  const GridRow rows[] = {
      {"alice", 0, false, noticed("in-app", true, 0), noticed("system", true, 0)},
      {"bob", 0, false, noticed("", false, 0), noticed("", false, 0)},
      {"bob", 0, true, noticed("in-app", true, 0), noticed("system", true, 0)},
      // Mode 1: the banner stays, the in-app sound path is suppressed, a vibration instead.
      {"bob", 1, false, noticed("in-app", false, 1), noticed("system", false, 1)},
      {"bob", 1, true, noticed("in-app", true, 0), noticed("system", true, 0)},
      {"bob", 2, false, noticed("in-app", true, 0), noticed("system", true, 0)},
  };
  for (const GridRow& r : rows) {
    SCOPED_TRACE(std::string(r.from) + " mode " + std::to_string(r.mode) +
                 (r.revealed ? " revealed" : " hidden"));
    launch();
    setMode(r.mode);
    for (bool background : {false, true}) {
      if (background) process->enterBackground();  // which hides again: reveal after it
      config().setUnlocked(r.revealed);
      const sim::Announcement& want = background ? r.background : r.active;
      sim::Announcement a = message(r.from);
      EXPECT_EQ(a.banner, want.banner) << (background ? "background" : "active");
      EXPECT_EQ(a.sound, want.sound) << (background ? "background" : "active");
      EXPECT_EQ(a.vibrations > 0, want.vibrations > 0) << (background ? "background" : "active");
    }
    for (const auto& v : process->runtime().violations()) ADD_FAILURE() << v;
    process.reset();
  }
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

// The silent copy is the library's to let go of: one per message would
// otherwise stay for the life of the app.
TEST_F(SystemRequest, TheSilentCopyIsLetGoOf) {
  launch();
  setMode(1);
  auto contents = [&] {
    long n = 0;
    for (rt::Id obj : process->runtime().liveObjects())
      n += rt::className(obj) == "UNMutableNotificationContent";
    return n;
  };
  rt::Id req = request(info({{rt::str("fromUserName"), rt::str("bob")}}), "");
  long before = contents();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(add(req));
  EXPECT_FALSE(last().sound) << "the copies were sent";
  wait(1);
  EXPECT_EQ(contents(), before);
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

TEST_F(Gating, ASecondInstallChangesNothing) {
  launch();
  notify::QBNotifyHooks::install();
  setMode(0);
  EXPECT_EQ(message("bob").banner, "") << "a second install would exchange the methods back";
}

}  // namespace
