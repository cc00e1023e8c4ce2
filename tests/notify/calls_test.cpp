// Calls: the CallKit reports, the in-app call banner, ending a blocked call
// in the background through whichever end selector the host has, and the
// missed-call message afterwards.
#include <gtest/gtest.h>

#include "notify_world.hpp"

namespace {

class Calls : public qbtest::NotifyWorld {};

TEST_F(Calls, BlockedVideoCallIsReportedThenEndedTwiceInTheBackground) {
  launch();
  setSwitches(true, false);
  process->enterBackground();
  sim::Announcement a = call("bob", true);
  EXPECT_TRUE(a.ended) << "reported to CallKit first, then ended";
  EXPECT_EQ(countLog("[QB] block PK CallKit UI from bob"), 1);
  EXPECT_EQ(countLog("[QB] CallKit requestEndCallTrans"), 1);
  wait(0.15);
  EXPECT_EQ(countLog("[QB] CallKit requestEndCallTrans"), 2);
  // The voice switch is on: a voice call rings.
  EXPECT_TRUE(call("bob", false).ringing);
}

TEST_F(Calls, WhileActiveTheCallIsLoggedButNothingIsEnded) {
  launch();
  setSwitches(true, false);
  sim::Announcement a = call("bob", true);
  EXPECT_EQ(countLog("[QB] block CallKit UI from bob video=1"), 1);
  EXPECT_TRUE(a.ringing);
  wait(1);
  EXPECT_EQ(countLog("CallKit requestEndCallTrans"), 0);
  EXPECT_EQ(a.banner, "") << "the in-app call banner is a call leftover";
  EXPECT_EQ(a.vibrations, 0);
}

TEST_F(Calls, NonSecretCallerIsNeverTouched) {
  launch();
  process->enterBackground();
  EXPECT_TRUE(call("alice", true).ringing);
  process->enterForeground();
  sim::Announcement a = call("alice", false);
  EXPECT_TRUE(a.ringing);
  EXPECT_EQ(a.banner, "in-app");
  EXPECT_GE(a.vibrations, 1);
  EXPECT_EQ(countLog("block"), 0);
}

TEST_F(Calls, UnansweredCallLeavesAMissedCallMessage) {
  launch();
  setSwitches(true, true);
  setMode(2);
  config().setUnlocked(true);
  EXPECT_TRUE(call("bob", false).ringing);
  wait(29);
  EXPECT_TRUE(latestCall("bob").ringing);
  wait(1);
  EXPECT_FALSE(latestCall("bob").ringing);
  sim::Announcement missed = *device.notices().latest("bob");
  EXPECT_EQ(missed.text, "[未接语音通话]");
  EXPECT_EQ(missed.banner, "in-app");
  // With the switch off the same missed call shows nothing.
  setSwitches(false, false);
  call("bob", false);
  wait(30);
  EXPECT_EQ(device.notices().latest("bob")->banner, "");
}

// Each host build ends the call its own way.
class EndSelectors : public qbtest::NotifyWorld,
                     public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(EndSelectors, EndsThroughWhatTheHostHas) {
  auto [variant, line] = GetParam();
  if (*variant) host.build.variants.insert(variant);
  launch();
  process->enterBackground();
  sim::Announcement a = call("bob", false);
  wait(0.2);
  if (*line) {
    EXPECT_TRUE(a.ended);
    EXPECT_EQ(countLog(line), 2);
  } else {
    EXPECT_TRUE(a.ringing) << "a host without an end selector keeps ringing";
    EXPECT_EQ(countLog("[QB] CallKit "), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Variants, EndSelectors,
    ::testing::Values(std::pair{"", "[QB] CallKit requestEndCallTrans"},
                      std::pair{"callkit-end-reportended", "[QB] CallKit reportCallEnded"},
                      std::pair{"callkit-end-atdate", "[QB] CallKit reportCallEndedAtDate"},
                      std::pair{"callkit-end-none", ""}));

TEST_F(Calls, PushKitFindsTheManagerThroughTheServiceRegistry) {
  host.build.lackingMethods.insert({"VoipCXMgr", "+sharedInstance"});
  launch();
  process->enterBackground();
  EXPECT_TRUE(call("bob", false).ended);
}

TEST_F(Calls, IlinkBannerFormIsGatedToo) {
  host.build.variants.insert("ilink-calls");
  launch();
  EXPECT_EQ(call("bob", false).banner, "");
  EXPECT_EQ(call("alice", false).banner, "in-app");
}

}  // namespace
