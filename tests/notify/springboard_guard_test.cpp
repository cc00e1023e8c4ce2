// The lock-screen guard in SpringBoard: what it does to each request of the
// host's bundle while the app is away, by notify mode and visibility, and
// how it lets everything through when it cannot decide.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "notify/springboard_gate.hpp"
#include "rt/runtime.hpp"
#include "sim/runtime/runtime.hpp"

#include "springboard_world.hpp"

namespace {

using qbtest::SpringBoardBuild;

constexpr char kHost[] = "com.example.messenger";

base::Value nested(const std::string& name) {
  return base::Value(base::Dictionary{
      {"aps", base::Value(base::Dictionary{{"custom", base::Dictionary{{"x", name}}}})}});
}

class Guard : public qbtest::SpringBoardWorld {};

TEST_F(Guard, ModeZeroDropsASecretsRequestWhileTheAppIsAwayAndPassesAFriends) {
  writeGate(0, {"bob"});
  startSpringBoard();
  EXPECT_FALSE(post(kHost, "bob")) << "by thread";
  EXPECT_EQ(device.notices().all().back().banner, "");
  EXPECT_FALSE(device.notices().all().back().sound);
  EXPECT_EQ(vibrations(), 0);
  EXPECT_FALSE(post(kHost, "", nested("bob"))) << "by nested user info";
  std::optional<qbtest::Presented> friendly = post(kHost, "alice");
  ASSERT_TRUE(friendly);
  EXPECT_TRUE(friendly->sound);
  // Another app's request naming the same string is not the host's.
  EXPECT_TRUE(post("com.example.mail", "bob"));
  EXPECT_EQ(countLog("bob"), 0) << "no secret's name in the log";
}

TEST_F(Guard, ModeOnePresentsWithoutSoundAndVibratesOnceButNeverTwice) {
  writeGate(1, {"bob"});
  startSpringBoard();
  std::optional<qbtest::Presented> p = post(kHost, "", nested("bob"));
  ASSERT_TRUE(p);
  EXPECT_FALSE(p->sound);
  EXPECT_EQ(vibrations(), 1);
  // The app's own path already took the sound away and vibrated.
  p = post(kHost, "bob", base::Value(base::Dictionary{}), false);
  ASSERT_TRUE(p);
  EXPECT_EQ(vibrations(), 0);
  p = post(kHost, "alice");
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->sound);
  EXPECT_EQ(vibrations(), 0);
}

TEST_F(Guard, ModeTwoAndTheAppInFrontPassEverythingUnchanged) {
  writeGate(2, {"bob"});
  startSpringBoard();
  std::optional<qbtest::Presented> p = post(kHost, "bob");
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->sound);
  EXPECT_EQ(vibrations(), 0);

  writeGate(0, {"bob"});
  front(kHost);
  EXPECT_TRUE(post(kHost, "bob")) << "in front: the app's own paths decide";
  front("com.example.notes");
  EXPECT_FALSE(post(kHost, "bob")) << "another app in front: the host is away";
}

TEST_F(Guard, ScheduleModeFollowsTheWindowsAtTheCurrentMinute) {
  // 09:00-12:00 show, 12:00-13:00 hide; outside both the secrets are hidden.
  writeGate(0, {"bob"}, 1, {{540, 720, 0}, {720, 780, 1}});
  startSpringBoard();
  device.setLocalTime(10, 30);
  EXPECT_TRUE(post(kHost, "bob")) << "inside a show window";
  device.setLocalTime(12, 0);
  EXPECT_FALSE(post(kHost, "bob")) << "a hide window";
  device.setLocalTime(11, 59);
  EXPECT_TRUE(post(kHost, "bob"));
  device.setLocalTime(20, 0);
  EXPECT_FALSE(post(kHost, "bob")) << "outside every window";
  // Manual mode hides whenever the app is away, whatever the windows say.
  writeGate(0, {"bob"}, 0, {{540, 1320, 0}});
  EXPECT_FALSE(post(kHost, "bob"));
}

TEST_F(Guard, AGateWithoutTheVisibilityKeysIsManualMode) {
  core::GateRecord r;
  r.salt = "00";
  r.hashes = {core::gateHash("00", "bob")};
  base::Dictionary old;
  base::Value current = core::gateValue(r);
  for (const auto& [k, v] : *current.asDictionary())
    if (k != "visibilityControl" && k != "dailyWindows") old.emplace_back(k, v);
  writeGateValue(base::Value(old));
  startSpringBoard();
  EXPECT_FALSE(post(kHost, "bob"));
}

TEST_F(Guard, AnEntryPointMissingLeavesSpringBoardUnchangedWithOneLine) {
  writeGate(0, {"bob"});
  startSpringBoard(SpringBoardBuild::LacksPostMethod);
  EXPECT_EQ(countLog("[QB] lock-screen guard not installed: no NCNotificationDispatcher "
                     "postNotificationWithRequest:"),
            1);
  EXPECT_EQ(countLog("[QB][stable]"), 0);
  startSpringBoard(SpringBoardBuild::LacksDispatcher);
  EXPECT_EQ(countLog("[QB] lock-screen guard not installed"), 2);
  EXPECT_EQ(countLog("[QB] lock-screen guard installed"), 0);
}

TEST_F(Guard, AnExceptionInARequestsGetterPassesItAsItCame) {
  writeGate(1, {"bob"});
  startSpringBoard();
  sim::InProcess here(*springBoard);
  springBoard->runtime().makeRaising(
      rt::methodImplementation(
          rt::getInstanceMethod(rt::getClass("NCNotificationRequest"), rt::sel("context"))),
      "simulated failure in -[NCNotificationRequest context]");
  std::optional<qbtest::Presented> p = post(kHost, "", nested("bob"));
  ASSERT_TRUE(p);
  EXPECT_TRUE(p->sound);
  EXPECT_EQ(vibrations(), 0);
  EXPECT_EQ(countLog("[QB] lock-screen guard ex: "), 1);
}

TEST_F(Guard, WithoutAUsableGateEverythingPassesWithOneLine) {
  startSpringBoard();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(post(kHost, "bob"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: no host container, everything passes"), 1);

  writeGateValue(base::Value("not a gate"));
  springBoard->advance(notify::kContainerRescanInterval_s + 1);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(post(kHost, "bob"));
  EXPECT_EQ(countLog("[QB] lock-screen guard: gate unreadable, everything passes"), 1);

  // Damaged bytes, then a record whose window key is malformed: each a new
  // version of the file, each unusable.
  std::filesystem::remove(gatePath());
  { std::ofstream(gatePath()) << "<plist><dict><key>salt"; }
  EXPECT_TRUE(post(kHost, "bob"));
  writeGate(0, {"bob"});
  EXPECT_FALSE(post(kHost, "bob"));
  core::GateRecord none;
  none.salt = "00";
  base::Dictionary bad = *core::gateValue(none).asDictionary();
  bad.emplace_back("visibilityControl", base::Value(7L));
  writeGateValue(base::Value(bad));
  settle();
  EXPECT_TRUE(post(kHost, "bob"));

  writeGate(0, {"bob"});
  EXPECT_FALSE(post(kHost, "bob"));
  std::filesystem::remove(gatePath());
  for (int i = 0; i < 3; ++i) {
    settle();
    EXPECT_TRUE(post(kHost, "bob"));
  }
  EXPECT_EQ(countLog("[QB] lock-screen guard: gate missing, everything passes"), 1);
  writeGate(0, {"bob"});
  EXPECT_FALSE(post(kHost, "bob")) << "back";
}

}  // namespace
