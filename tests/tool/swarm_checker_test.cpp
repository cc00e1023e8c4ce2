// The swarm's checker on its own, fed steps and observations by hand: it
// names the promise a breach breaks, keeps quiet where the design says so
// (a fault that feeds the surface, a change still reaching the screen), and
// guards the settings file before and after saves, and a damaged one kept aside.
#include <gtest/gtest.h>

#include "base/value.hpp"
#include "sim/codec/plist_codec.hpp"
#include "swarm_checker.hpp"
#include "swarm_faults.hpp"

namespace {

using qbsim::swarm::Checker;
using qbsim::swarm::Observation;
using qbsim::swarm::Settings;

Settings withBob() {
  Settings s;
  s.secrets = {"bob"};
  return s;
}

// A world where the main list reloads on every look.
struct Looks {
  long reloads = 0;
  double now = 0;
  Observation at(double t, std::vector<std::string> main, bool active = true) {
    Observation o;
    o.running = true;
    o.active = active;
    o.now = now = t;
    o.screen = "NewMainFrameViewController";
    o.mainRows = std::move(main);
    o.mainReloads = ++reloads;
    return o;
  }
};

int breachOf(Checker& c, const Observation& o) {
  auto b = c.check(o);
  return b ? b->invariant : 0;
}

// Whether the lock-screen promise is broken (no settings file is shown here).
bool lockScreenBreach(Checker& c, const Observation& o) { return breachOf(c, o) == 6; }

TEST(SwarmChecker, ASecretShownWithoutACredentialBreaksTheFirstPromiseOnceTheListReloads) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  EXPECT_EQ(breachOf(c, l.at(0, {"alice"})), 0);
  EXPECT_EQ(breachOf(c, l.at(0.2, {"bob", "alice"})), 0) << "still settling after the launch";
  EXPECT_EQ(breachOf(c, l.at(1, {"bob", "alice"})), 1);
}

TEST(SwarmChecker, LeavingAfterACredentialHidesOnReturnWithOrWithoutThePanelUp) {
  // A prompt on screen holds the plain auto-lock back; the panel's sheet does
  // not, whatever it shows on top.
  for (bool panel : {false, true}) {
    Checker c(withBob(), std::nullopt, false, 0);
    Looks l;
    c.launched(0);
    breachOf(c, l.at(1, {"alice"}));
    c.credential(1.5);
    EXPECT_EQ(breachOf(c, l.at(3, {"bob", "alice"})), 0);
    c.background(4, /*somethingHeldOnScreen=*/panel, /*panelOnScreen=*/panel);
    breachOf(c, l.at(4, {"bob"}, false));
    c.foreground(10);
    breachOf(c, l.at(10, {"bob"}));
    EXPECT_EQ(breachOf(c, l.at(11, {"bob", "alice"})), 3) << "panel " << panel;
  }
}

TEST(SwarmChecker, ClosingThePanelHidesWhetherByItsButtonOrByDraggingTheSheet) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  c.credential(1);
  EXPECT_EQ(breachOf(c, l.at(2, {"bob"})), 0);
  c.panelClosed();
  breachOf(c, l.at(2, {"bob"}));
  EXPECT_EQ(breachOf(c, l.at(3, {"bob"})), 1);
}

TEST(SwarmChecker, TheAppSwitcherPictureNeverShowsASecretUnlessAFaultFeedsThatList) {
  Observation o = Looks{}.at(1, {"alice"});
  o.snapshot = Observation::Picture{"main", {"alice", "bob"}};
  Checker plain(withBob(), std::nullopt, false, 0);
  EXPECT_EQ(breachOf(plain, o), 3) << "even while revealed: no credential is needed to look";
  Checker fed(withBob(), std::nullopt, false, qbsim::swarm::kMainList);
  EXPECT_EQ(breachOf(fed, o), 0);
  o.snapshot = Observation::Picture{"contacts", {"bob"}};
  EXPECT_EQ(breachOf(fed, o), 3) << "the contacts list is not fed by that fault";
  o.snapshot = Observation::Picture{"main", {"alice"}};
  EXPECT_EQ(breachOf(plain, o), 0);
}

TEST(SwarmChecker, AutoLockActsAtMostOncePerSpacingAndNotWithAPromptOnScreen) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  c.credential(4.5);
  c.background(5, true);  // a dialog was up: the auto-lock is held back
  c.foreground(5.2);
  c.background(5.5, false);  // within the spacing of the last departure
  c.foreground(6);
  breachOf(c, l.at(6, {"bob"}));
  EXPECT_EQ(breachOf(c, l.at(7, {"bob"})), 0);
  c.background(8, false);
  c.foreground(9);
  breachOf(c, l.at(9, {"bob"}));
  EXPECT_EQ(breachOf(c, l.at(10, {"bob"})), 3);
  // Leaving right after 确定: the check's result and the panel it opens land later.
  c.credential(20);
  c.background(20.3, false);
  c.foreground(21);
  breachOf(c, l.at(21, {"bob"}));
  EXPECT_EQ(breachOf(c, l.at(22, {"bob"})), 0);
}

TEST(SwarmChecker, AFaultExemptsExactlyTheSurfacesItFeeds) {
  for (unsigned exempt : {0u, unsigned(qbsim::swarm::kMoments), unsigned(qbsim::swarm::kSearch)}) {
    Checker c(withBob(), std::nullopt, false, exempt);
    Looks l;
    c.launched(0);
    breachOf(c, l.at(1, {}));
    c.opened(Checker::Moments, {"bob", "alice"});
    breachOf(c, l.at(2, {}));
    Observation o = l.at(3, {});
    o.moments = {"bob", "alice"};
    EXPECT_EQ(breachOf(c, o), exempt == qbsim::swarm::kMoments ? 0 : 2) << exempt;
  }
}

TEST(SwarmChecker, AScreenStillDrawsEveryoneElseUnlessTheHostLacksIt) {
  for (unsigned gone : {0u, unsigned(qbsim::swarm::kSearch)}) {
    Checker c(withBob(), std::nullopt, false, gone, gone);
    Looks l;
    c.launched(0);
    breachOf(c, l.at(1, {}));
    c.opened(Checker::Search, {"bob", "alice", "carol"});
    Observation o = l.at(2, {});
    o.search = {"carol"};
    EXPECT_EQ(breachOf(c, o), gone ? 0 : 4) << "alice is not a secret";
    o = l.at(3, {});
    o.search = {"alice", "carol"};
    EXPECT_EQ(breachOf(c, o), 0);
  }
}

TEST(SwarmChecker, NotificationsFollowTheModeWhileHiddenAndCallsTheirSwitchesInTheBackground) {
  for (long mode : {0L, 1L, 2L}) {
    Settings s = withBob();
    s.notifyMode = mode;
    Checker c(s, std::nullopt, false, 0);
    Looks l;
    c.launched(0);
    breachOf(c, l.at(1, {}));
    Observation o = l.at(2, {});
    sim::Announcement banner{"bob", "message", "hi", "in-app", false, 0};
    o.announcements = {banner};
    EXPECT_EQ(breachOf(c, o), mode == 0 ? 2 : 0);
    o = l.at(3, {});
    sim::Announcement sound{"bob", "message", "hi", "", true, 0};
    o.announcements = {sound};
    EXPECT_EQ(breachOf(c, o), mode == 2 ? 0 : 2);
  }
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  Observation o = l.at(1, {}, false);
  sim::Announcement call{"bob", "voice call", "", "", false, 0, true};
  o.announcements = {call};
  EXPECT_EQ(breachOf(c, o), 2);
  call.from = "alice";
  o.announcements = {call};
  EXPECT_EQ(breachOf(c, o), 0);
}

TEST(SwarmChecker, TheFileStaysAsItWasUntilTheFirstSaveThenHoldsWhatWasSaved) {
  std::string legacy = sim::encodePlist(
      base::Value(base::Dictionary{{"authMode", base::Value(1L)}}), sys::PlistFormat::Xml);
  Checker c(Settings{}, legacy, false, 0);
  Looks l;
  c.launched(0);
  Observation o = l.at(1, {});
  o.file = legacy;
  EXPECT_EQ(breachOf(c, o), 0);
  o.file = legacy + " ";
  EXPECT_EQ(breachOf(c, o), 5);
  Settings saved = withBob();
  c.saved(saved, 2);
  base::Dictionary d;
  d.emplace_back("secrets", base::Value(base::Array{base::Value(std::string("bob"))}));
  d.emplace_back("password", base::Value(std::string("7351")));
  d.emplace_back("visibilityControl", base::Value(0L));
  d.emplace_back("secretNotifyMode", base::Value(0L));
  d.emplace_back("voipVoiceNotify", base::Value(false));
  d.emplace_back("voipVideoNotify", base::Value(false));
  for (const char* key : {"shakeShow", "shakeHide", "longPressUnlock", "passwordFallback"})
    d.emplace_back(key, base::Value(true));
  o = l.at(3, {});
  o.file = sim::encodePlist(base::Value(d), sys::PlistFormat::Xml);
  EXPECT_EQ(breachOf(c, o), 0);
  o.besideFile["config.plist.tmp.1.0"] = "";
  EXPECT_EQ(breachOf(c, o), 5) << "nothing is left beside a usable file";
  o.besideFile.clear();
  saved.voice = true;
  c.saved(saved, 4);
  EXPECT_EQ(breachOf(c, o), 5) << "the file must follow the last save";
  o.file = legacy;
  EXPECT_EQ(breachOf(c, o), 5);
}

TEST(SwarmChecker, ADamagedFileIsKeptAsideWholeFromTheFirstLaunch) {
  std::string damaged = "bplist00\x01garbage";
  Checker c(Settings{}, damaged, false, 0);
  Looks l;
  Observation before;
  before.file = damaged;
  EXPECT_EQ(breachOf(c, before), 0);
  c.launched(0);
  Observation o = l.at(1, {});
  o.file = damaged;
  EXPECT_EQ(breachOf(c, o), 5) << "still in place after launch";
  o.file.reset();
  EXPECT_EQ(breachOf(c, o), 5) << "gone, not kept";
  o.besideFile["config-2025-11-25-031700.plist"] = damaged;
  EXPECT_EQ(breachOf(c, o), 0);
  o.besideFile["config-2025-11-25-031700.plist"] = "";
  EXPECT_EQ(breachOf(c, o), 5) << "its bytes are the user's";
  o.besideFile.clear();
  o.besideFile["config-old.plist"] = damaged;
  EXPECT_EQ(breachOf(c, o), 5) << "named for the date and time";
  o.besideFile.clear();
  o.besideFile["config-2025-11-25-031700.plist"] = damaged;
  c.quit();
  c.launched(5);
  EXPECT_EQ(breachOf(c, l.at(6, {})), 5) << "a later launch does not lose it";
}

TEST(SwarmChecker, ACrashIsAlwaysABreach) {
  Checker c(Settings{}, std::nullopt, false, ~0u);
  Observation o;
  o.crash = "app crashed: uncaught exception";
  EXPECT_EQ(breachOf(c, o), 4);
}

}  // namespace

namespace {

Observation withLockScreen(Looks& l, double t, std::vector<std::string> from) {
  Observation o = l.at(t, {"alice"});
  int id = 0;
  for (auto& f : from) o.lockscreen.push_back({"n" + std::to_string(++id), f});
  return o;
}

TEST(SwarmChecker, ASecretOnTheLockScreenWhileHiddenInModeZeroBreaksTheSixthPromise) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  EXPECT_EQ(breachOf(c, withLockScreen(l, 0, {"alice", "bob"})), 0) << "the sweep is under way";
  EXPECT_EQ(breachOf(c, withLockScreen(l, 1, {"alice"})), 0);
  EXPECT_EQ(breachOf(c, withLockScreen(l, 2, {"alice", "bob"})), 6);
}

TEST(SwarmChecker, ModesOneAndTwoAndModeZeroChosenWhileHiddenKeepTheLockScreen) {
  Settings s = withBob();
  s.notifyMode = 1;
  Checker c(s, std::nullopt, true, 0);
  Looks l;
  c.launched(0);
  EXPECT_FALSE(lockScreenBreach(c, withLockScreen(l, 1, {"bob"})));
  s.notifyMode = 0;
  c.saved(s, 2);  // nothing hides: what is there may stay
  EXPECT_FALSE(lockScreenBreach(c, withLockScreen(l, 3, {"bob"})));
  Observation later = withLockScreen(l, 4, {"bob"});
  later.lockscreen.push_back({"new", "bob"});
  EXPECT_TRUE(lockScreenBreach(c, later));
  c.launched(5);  // a cold start sweeps it all
  EXPECT_TRUE(lockScreenBreach(c, withLockScreen(l, 6, {"bob"})));
}

TEST(SwarmChecker, ASecretSuggestedOrFoundBreaksTheSeventhPromiseInAnyState) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  Observation o = l.at(0, {});
  o.running = false;  // not even running
  o.suggestions = {"alice", "bob"};
  EXPECT_EQ(breachOf(c, o), 7);
  Checker exempt(withBob(), std::nullopt, false, qbsim::swarm::kSuggestions);
  EXPECT_EQ(breachOf(exempt, o), 0) << "a host that donates by name is not caught";
  o.suggestions.clear();
  o.indexed = {"bob"};
  EXPECT_EQ(breachOf(exempt, o), 7);
  // Made secret while not running: from the next start on.
  Checker away(Settings{}, std::nullopt, false, 0);
  away.saved(withBob(), 1);
  EXPECT_NE(breachOf(away, o), 7);
  away.launched(2);
  EXPECT_EQ(breachOf(away, o), 7);
}

}  // namespace

namespace {

// A settings file that holds exactly `s`, as the library writes one.
base::Dictionary fileOf(const Settings& s) {
  base::Dictionary d;
  base::Array secrets;
  for (const auto& u : s.secrets) secrets.emplace_back(u);
  d.emplace_back("secrets", base::Value(std::move(secrets)));
  d.emplace_back("password", base::Value(s.password));
  d.emplace_back("visibilityControl", base::Value(s.manual ? 0L : 1L));
  d.emplace_back("secretNotifyMode", base::Value(s.notifyMode));
  d.emplace_back("voipVoiceNotify", base::Value(s.voice));
  d.emplace_back("voipVideoNotify", base::Value(s.video));
  for (const auto& [key, on] : s.switches) d.emplace_back(key, base::Value(on));
  for (const auto& [key, mode] : s.modes) d.emplace_back(key, base::Value(mode));
  base::Array windows;
  for (const auto& w : s.windows)
    windows.emplace_back(base::Dictionary{{"start", base::Value(w.start)},
                                          {"end", base::Value(w.end)},
                                          {"mode", base::Value(w.hide ? 1L : 0L)}});
  d.emplace_back("dailyWindows", base::Value(std::move(windows)));
  return d;
}

void put(base::Dictionary& d, const std::string& key, base::Value v) {
  for (auto& [k, value] : d)
    if (k == key) value = std::move(v);
}

TEST(SwarmChecker, EveryFieldOfASaveIsJudgedAndABreachNamesBothValues) {
  Settings saved = withBob();
  saved.manual = false;
  saved.notifyMode = 1;
  saved.voice = false;
  saved.video = true;
  saved.switches["shakeHide"] = false;
  saved.modes["revealAuthMode"] = 1;
  saved.windows = {{600, 660, true}, {60, 120, false}};
  saved.windowsKnown = true;
  struct Wrong {
    const char* key;
    base::Value value;
    const char* message;
  };
  const Wrong wrongs[] = {
      {"secrets", base::Value(base::Array{}), "secrets [], last saved [bob]"},
      {"password", base::Value(std::string("2468")), "password 2468, last saved 7351"},
      {"visibilityControl", base::Value(0L), "visibilityControl 0, last saved 1"},
      {"secretNotifyMode", base::Value(2L), "secretNotifyMode 2, last saved 1"},
      {"voipVoiceNotify", base::Value(true), "voipVoiceNotify true, last saved false"},
      {"voipVideoNotify", base::Value(false), "voipVideoNotify false, last saved true"},
      {"shakeHide", base::Value(true), "shakeHide true, last saved false"},
      {"revealAuthMode", base::Value(0L), "revealAuthMode 0, last saved 1"},
      {"dailyWindows", base::Value(base::Array{}),
       "dailyWindows [], last saved [01:00-02:00 show 10:00-11:00 hide]"},
  };
  for (const Wrong& w : wrongs) {
    Checker c(Settings{}, std::nullopt, false, 0);
    c.saved(saved, 0);
    base::Dictionary d = fileOf(saved);
    Observation o;
    o.file = sim::encodePlist(base::Value(d), sys::PlistFormat::Xml);
    EXPECT_FALSE(c.check(o)) << "the file as saved, windows in another order";
    put(d, w.key, w.value);
    o.file = sim::encodePlist(base::Value(d), sys::PlistFormat::Xml);
    auto b = c.check(o);
    ASSERT_TRUE(b) << w.key;
    EXPECT_EQ(b->invariant, 5);
    EXPECT_EQ(b->what, std::string("the settings file holds ") + w.message);
  }
}

TEST(SwarmSettings, ASwitchFlippedToWhatItShowsSavesNothingWhateverTheModelHeld) {
  // The panel opened on a file the model had not caught up with: the voice
  // switch shows on while the model holds off.
  Settings s;
  EXPECT_FALSE(qbsim::swarm::learnSwitch(s, "voipVoiceNotify", true, "on"));
  EXPECT_FALSE(s.voice) << "nothing saved, nothing learnt";
  EXPECT_TRUE(qbsim::swarm::learnSwitch(s, "voipVoiceNotify", false, "on"));
  EXPECT_FALSE(s.voice);
  EXPECT_TRUE(qbsim::swarm::learnSwitch(s, "shakeHide", false, "on"));
  EXPECT_FALSE(s.switches["shakeHide"]);
  EXPECT_TRUE(qbsim::swarm::learnSwitch(s, "voipVideoNotify", true, "off"));
  EXPECT_TRUE(s.video);
  EXPECT_FALSE(qbsim::swarm::learnSwitch(s, "voipVideoNotify", false, "off"));
  EXPECT_TRUE(s.video) << "the model keeps what it held when the switch does not move";
}

TEST(SwarmChecker, TheKeptLogNamingASecretAsAWordBreaksTheEighthPromise) {
  Checker c(withBob(), std::nullopt, false, 0);
  Observation o;
  o.keptLog = {"[QB] hid 1 session", "[QB] bobby and bob_2 are not secret"};
  EXPECT_EQ(breachOf(c, o), 0) << "a longer name that starts alike is someone else";
  o.keptLog = {"[QB] reveal for bob, 2 rows"};
  auto b = c.check(o);
  ASSERT_TRUE(b);
  EXPECT_EQ(b->invariant, 8);
  o.keptLog = {"[QB] reveal for <private>, 2 rows"};
  EXPECT_EQ(breachOf(c, o), 0);
}

}  // namespace

namespace {

// The app asleep (suspended or not running): SpringBoard alone presents.
Observation asleep(Looks& l, double t, std::vector<std::string> lockscreen, long minute = 720) {
  Observation o = withLockScreen(l, t, std::move(lockscreen));
  o.asleep = true;
  o.active = false;
  o.minuteOfDay = minute;
  return o;
}

sim::Announcement messageFrom(const std::string& who, bool sound) {
  sim::Announcement a;
  a.from = who;
  a.kind = "message";
  a.banner = "system";
  a.sound = sound;
  return a;
}

TEST(SwarmChecker, AsleepInManualModeASecretsMessageMustShowNothingInModeZero) {
  Checker c(withBob(), std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  breachOf(c, l.at(1, {"alice"}));
  c.credential(2);  // revealed in the app: SpringBoard still hides once it sleeps
  c.background(3, false);
  EXPECT_EQ(breachOf(c, asleep(l, 10, {})), 0);
  Observation o = asleep(l, 11, {});
  o.announcements = {messageFrom("alice", true)};
  o.announcedAt = {11};
  EXPECT_EQ(breachOf(c, o), 0) << "a friend's shows";
  o = asleep(l, 12, {"bob"});
  o.announcements = {messageFrom("bob", true)};
  o.announcedAt = {12};
  EXPECT_EQ(breachOf(c, o), 2);
}

TEST(SwarmChecker, AsleepInScheduleModeTheWindowsDecide) {
  Settings s = withBob();
  s.manual = false;
  s.windowsKnown = true;
  s.windows = {{12 * 60, 13 * 60, /*hide=*/false}};
  Checker c(s, std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  EXPECT_EQ(breachOf(c, asleep(l, 10, {})), 0);
  Observation inside = asleep(l, 11, {"bob"}, 12 * 60 + 30);
  inside.announcements = {messageFrom("bob", true)};
  inside.announcedAt = {11};
  EXPECT_EQ(breachOf(c, inside), 0) << "inside a show window";
  Observation after = asleep(l, 12, {"bob"}, 13 * 60 + 1);
  EXPECT_EQ(breachOf(c, after), 0) << "what came while shown may stay while the app sleeps";
  after.now = 13;
  after.lockscreen.push_back({"late", "bob"});
  after.announcements = {messageFrom("bob", false)};
  after.announcedAt = {13};
  EXPECT_EQ(breachOf(c, after), 2) << "after the window: no banner";
}

TEST(SwarmChecker, AsleepTheLockScreenKeepsWhatItHadUntilTheAppRunsAgain) {
  // Bob's message is there from before he was made secret, which happens
  // while the app sleeps: nothing can sweep it then.
  Checker c(Settings{}, std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  breachOf(c, l.at(1, {"alice"}));
  EXPECT_NE(breachOf(c, asleep(l, 10, {"bob"})), 6);
  c.saved(withBob(), 11);
  EXPECT_NE(breachOf(c, asleep(l, 20, {"bob"})), 6) << "nothing sweeps while asleep";
  Observation more = asleep(l, 21, {"bob"});
  more.lockscreen.push_back({"new", "bob"});
  EXPECT_EQ(breachOf(c, more), 6) << "but nothing new of a secret's may come";
  // Awake again: the app sweeps, after the usual moment.
  EXPECT_NE(breachOf(c, withLockScreen(l, 30, {"bob"})), 6);
  EXPECT_EQ(breachOf(c, withLockScreen(l, 31, {"bob"})), 6);
}

TEST(SwarmChecker, MadeSecretWhileAsleepTheOutsideRecordsWaitForTheAppToRun) {
  Checker c(Settings{}, std::nullopt, false, 0);
  Looks l;
  c.launched(0);
  breachOf(c, l.at(1, {"alice"}));
  breachOf(c, asleep(l, 10, {}));
  c.saved(withBob(), 11);
  Observation o = asleep(l, 12, {});
  o.suggestions = {"bob"};
  EXPECT_NE(breachOf(c, o), 7) << "the clean-up waits in the suspended app";
  Observation awake = l.at(20, {"alice"});
  awake.suggestions = {"bob"};
  EXPECT_EQ(breachOf(c, awake), 7);
}

}  // namespace
