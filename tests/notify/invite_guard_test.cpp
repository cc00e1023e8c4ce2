// The invitation guard, installed here on a stand-in host class because the
// library deliberately leaves it out: the blocked invite, the suppression
// record and its 45 s life, and the hiding of invitation views.
#include <gtest/gtest.h>

#include "notify/invite_guard.hpp"
#include "notify_world.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/clock.hpp"

namespace {

using notify::InviteHook;
using rt::Id;
using rt::SEL;

int gProcessed = 0, gHandled = 0, gViews = 0;
void processInvite(Id, SEL, Id) { ++gProcessed; }
void handleMono(Id, SEL, Id) { ++gHandled; }
void loadView(Id, SEL) { ++gViews; }

class InviteGuard : public qbtest::NotifyWorld {
 protected:
  void SetUp() override {
    NotifyWorld::SetUp();
    gProcessed = gHandled = gViews = 0;
  }
  void defineInviteHost() {
    sim::ClassBuilder("VoipInviteHost")
        .method("processInviteMsg:", processInvite)
        .classMethod("handleInviteMonoMsg:", handleMono)
        .build();
    sim::ClassBuilder("VoIPInvitationBreadthView", "UIView")
        .ivar("fromUserName", "@")
        .method("loadBreadthView", loadView)
        .build();
    rt::Class inviteHost = rt::getClass("VoipInviteHost");
    ASSERT_TRUE(
        notify::installInviteHook(InviteHook::ProcessInviteMsg, inviteHost, "processInviteMsg:"));
    ASSERT_TRUE(notify::installInviteHook(InviteHook::HandleInviteMonoMsg, inviteHost,
                                          "handleInviteMonoMsg:"));
    ASSERT_TRUE(notify::installInviteHook(
        InviteHook::LoadBreadthView, rt::getClass("VoIPInvitationBreadthView"), "loadBreadthView"));
    EXPECT_FALSE(notify::installInviteHook(InviteHook::VcUpdate, inviteHost,
                                           "vc_updateWithInvitationInfo:"));
  }
  static Id invite(const char* from, bool video) {
    return rt::dictionary(
        {{rt::str("fromUserName"), rt::str(from)}, {rt::str("isVideo"), rt::boolNumber(video)}});
  }
};

TEST_F(InviteGuard, BlockedInviteIsDroppedOthersReachTheHost) {
  launch();
  defineInviteHost();
  setSwitches(true, false);
  Id mgr = rt::send<Id>(rt::getClass("VoipInviteHost"), "new");
  rt::send<void>(mgr, "processInviteMsg:", invite("bob", true));
  EXPECT_EQ(gProcessed, 0);
  EXPECT_EQ(countLog("[QB] block incoming voip invite"), 1);
  rt::send<void>(mgr, "processInviteMsg:", invite("bob", false));
  rt::send<void>(mgr, "processInviteMsg:", invite("alice", true));
  // The user's own call is never blocked.
  rt::send<void>(mgr, "processInviteMsg:",
                 rt::dictionary({{rt::str("fromUserName"), rt::str("wxid_me")},
                                 {rt::str("isVideo"), rt::boolNumber(true)}}));
  EXPECT_EQ(gProcessed, 3);
}

TEST_F(InviteGuard, SuppressionLastsFortyFiveSecondsAndRestarts) {
  launch();
  defineInviteHost();
  rt::send<void>(rt::getClass("VoipInviteHost"), "handleInviteMonoMsg:", invite("bob", false));
  EXPECT_EQ(gHandled, 1) << "the host's handler runs in every case";
  EXPECT_EQ(countLog("[QB] suppress handleInviteMonoMsg bob"), 1);
  EXPECT_EQ(countLog("[QB] invite suppress bob for 45s"), 1);
  double set = sys::absoluteTime();
  EXPECT_DOUBLE_EQ(notify::currentInviteSuppression().expiry, set + 45.0);
  EXPECT_TRUE(notify::inviteSuppressedFor("bob"));
  EXPECT_FALSE(notify::inviteSuppressedFor("alice"));
  wait(30);
  notify::suppressInvitesFrom("");
  EXPECT_EQ(notify::currentInviteSuppression().username, "*");
  EXPECT_TRUE(notify::inviteSuppressedFor("alice")) << "\"*\" stands for any caller";
  wait(44.9);
  EXPECT_TRUE(notify::inviteSuppressedFor("alice")) << "the second suppression restarted the 45 s";
  wait(0.1);
  EXPECT_FALSE(notify::inviteSuppressedFor("alice"));
  EXPECT_FALSE(notify::inviteSuppressedFor("bob"));
}

TEST_F(InviteGuard, InvitationViewsAreHiddenInEveryWindow) {
  launch();
  defineInviteHost();
  Id view = rt::send<Id>(rt::getClass("VoIPInvitationBreadthView"), "new");
  rt::setIvarObject(
      view, rt::getInstanceVariable(rt::getClass("VoIPInvitationBreadthView"), "fromUserName"),
      rt::str("bob"));
  Id container = rt::send<Id>(rt::getClass("UIView"), "new");
  rt::send<void>(container, "addSubview:", view);
  Id window = sim::addWindow(nullptr, false);
  rt::send<void>(window, "addSubview:", container);
  rt::send<void>(view, "loadBreadthView");
  EXPECT_EQ(gViews, 0);
  EXPECT_EQ(countLog("[QB] block loadBreadthView"), 1);
  wait(0);
  EXPECT_TRUE(sim::viewState(view)->hidden);
  EXPECT_EQ(sim::viewState(view)->alpha, 0.0);
  EXPECT_FALSE(sim::viewState(view)->userInteraction);
  // Shown again by the host, it is hidden once more by the second pass.
  sim::viewState(view)->hidden = false;
  wait(0.08);
  EXPECT_TRUE(sim::viewState(view)->hidden);
  EXPECT_FALSE(sim::viewState(container)->hidden);
}

TEST_F(InviteGuard, HandlingABlockedInviteHidesTheViewsTheHostShows) {
  launch();
  defineInviteHost();
  Id view = rt::send<Id>(rt::getClass("VoIPInvitationBreadthView"), "new");
  rt::send<void>(sim::addWindow(nullptr, false), "addSubview:", view);
  rt::send<void>(rt::getClass("VoipInviteHost"), "handleInviteMonoMsg:", invite("alice", false));
  wait(0.1);
  EXPECT_FALSE(sim::viewState(view)->hidden) << "nothing is suppressed for a non-secret";
  rt::send<void>(rt::getClass("VoipInviteHost"), "handleInviteMonoMsg:", invite("bob", false));
  wait(0);
  EXPECT_TRUE(sim::viewState(view)->hidden);
}

}  // namespace
