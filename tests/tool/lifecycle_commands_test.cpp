// The simulator's commands of the app's life: install, expect app, the run
// state in show state, and what a sleeping app does with a message or call.
#include <gtest/gtest.h>

#include <sstream>

#include "runner.hpp"

namespace {

struct Outcome {
  int status = 0;
  std::string out, err;
};

Outcome run(const std::string& text) {
  Outcome r;
  std::ostringstream out, err;
  qbsim::Session session({}, out);
  std::istringstream in(text);
  r.status = qbsim::runScript(session, in, "s.qbs", err);
  r.out = out.str();
  r.err = err.str();
  return r;
}

TEST(LifecycleCommands, ScriptErrors) {
  EXPECT_EQ(run("install\n").status, 2);
  EXPECT_EQ(run("install cydia\n").status, 2);
  Outcome late = run("launch\ninstall sideload\n");
  EXPECT_EQ(late.status, 2);
  EXPECT_NE(late.err.find("s.qbs:2: install: only before the first launch"), std::string::npos)
      << late.err;
  EXPECT_EQ(run("launch\nquit\ninstall jailbreak\n").status, 2) << "a quit does not undo a launch";
  EXPECT_EQ(run("expect app asleep\n").status, 2);
  EXPECT_EQ(run("expect app\n").status, 2);
  EXPECT_EQ(run("launch\nhost lacks NCNotificationDispatcher\n").status, 2);
  EXPECT_EQ(run("background\n").status, 2) << "not running";
  EXPECT_EQ(run("launch\nbackground\nwait 10\nbackground\n").status, 2) << "already there";
}

TEST(LifecycleCommands, TheRunStateAsExpectAndShowStateSayIt) {
  Outcome r =
      run("expect app not-running\nshow state\nlaunch\nexpect app running\nbackground\n"
          "expect app running\nwait 4.9\nexpect app running\nwait 0.2\nexpect app suspended\n"
          "show state\nforeground\nexpect app running\nshow state\nquit\nexpect app not-running\n");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("app: not-running\n"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("app: suspended\nsecrets: hidden"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("app: running (active)\n"), std::string::npos) << r.out;
  Outcome wrong = run("launch\nexpect app suspended\n");
  EXPECT_EQ(wrong.status, 1);
  EXPECT_NE(wrong.err.find("s.qbs:2: expect app suspended: got running"), std::string::npos)
      << wrong.err;
}

// Out of the foreground the app's screen is not there to touch, and a
// suspended app runs no thread to read the motion sensors.
TEST(LifecycleCommands, TheAppIsTouchedOnlyInTheForeground) {
  const std::string away = "friend bob\nsecret bob\nlaunch\nopen about\nwait 1\nbackground\n";
  for (const char* command :
       {"open contacts", "tap version", "longpress", "scroll main", "panel done", "picker back",
        "press 确定", "type 1234", "time 08:00", "biometric pass"}) {
    Outcome r = run(away + command + "\n");
    EXPECT_EQ(r.status, 2) << command;
    EXPECT_EQ(r.err.rfind("s.qbs:7: ", 0), 0u) << command << ": " << r.err;
    EXPECT_NE(r.err.find(": the app is not in the foreground\n"), std::string::npos)
        << command << ": " << r.err;
  }
  Outcome back = run(away + "foreground\ntap version\n");
  EXPECT_EQ(back.status, 0) << back.err;

  Outcome shaken =
      run("friend bob\nsecret bob\nlaunch\nbackground\nwait 6\nexpect app suspended\nshake\n"
          "foreground\nwait 2\nexpect screen main\nexpect hidden\n");
  EXPECT_EQ(shaken.status, 0) << "a shake the suspended app missed asks for no password later: "
                              << shaken.err;
  Outcome awake = run("friend bob\nsecret bob\nlaunch\nshake\nwait 1\nexpect screen alert\n");
  EXPECT_EQ(awake.status, 0) << "the same shake in the foreground does: " << awake.err;
}

// A dialog, the Face ID prompt or the panel takes every touch meant for the
// screens under it.
TEST(LifecycleCommands, NothingUnderADialogOrThePanelIsTouched) {
  const std::string world = "friend bob\nsecret bob\nlaunch\nwait 2\n";
  struct Case {
    std::string setUp, command, error;
  };
  const Case cases[] = {
      {"shake\n", "open contacts", "open: a dialog is on screen"},
      {"shake\n", "open chat bob", "open: a dialog is on screen"},
      {"shake\n", "scroll main", "scroll: a dialog is on screen"},
      {"shake\n", "longpress", "longpress: a dialog is on screen"},
      {"setting revealAuthMode 1\nshake\n", "open about", "open: a dialog is on screen"},
      {"open about\nwait 1\ntap version\ntap version\ntap version\ntap version\ntap "
       "version\ntype 7351\npress 确定\nwait 1\n",
       "open main", "open: the control panel is on screen"},
      {"open contacts\n", "scroll main", "scroll: the main list is not on screen (contacts is)"},
  };
  for (const Case& c : cases) {
    Outcome r = run(world + c.setUp + c.command + "\n");
    EXPECT_EQ(r.status, 2) << c.setUp << c.command << ": " << r.err;
    EXPECT_NE(r.err.find(c.error), std::string::npos) << c.command << ": " << r.err;
  }
  Outcome cancelled = run(world + "shake\npress 取消\nopen contacts\nexpect screen contacts\n");
  EXPECT_EQ(cancelled.status, 0) << cancelled.err;
}

// The check reads the disk as a tester would, past the data protection the
// running app meets on a phone locked since its restart.
TEST(LifecycleCommands, ExpectFileReadsTheDiskOfALockedPhone) {
  Outcome r =
      run("friend bob\nsecret bob\ndevice locked\nlaunch\nexpect file secrets [bob]\n"
          "expect file password 7351\n");
  EXPECT_EQ(r.status, 0) << r.err;
}

// A build without a class or getter runs as its own code would: a class with
// no methods of its own can be lacked too, and the host's screens do not call
// a getter the build does not have.
TEST(LifecycleCommands, AHostBuildWithoutAPieceStillRuns) {
  for (const char* lacks :
       {"CMessageWrap", "QuickReplyItem", "NewMainFrameViewController logicGetCountForSection:",
        "NewMainFrameViewController logicGetCellDataAtIndexPath:"}) {
    Outcome r = run(std::string("friend alice\nsession alice\nhost lacks ") + lacks +
                    "\nlaunch\nwait 1\nexpect main alice\nmessage alice hi\n");
    EXPECT_EQ(r.status, 0) << lacks << ": " << r.err;
  }
}

// SpringBoard's own methods raise as the app's do, before or after launch.
TEST(LifecycleCommands, ASpringBoardMethodThatRaisesCrashesSpringBoard) {
  const std::string raises = "host raises NCNotificationDispatcher postNotificationWithRequest:\n";
  for (const std::string& order : {raises + "launch\n", "launch\n" + raises}) {
    Outcome r = run("friend bob nick=Bob\n" + order + "background\nwait 10\nmessage bob hi\n");
    EXPECT_EQ(r.status, 1) << order;
    EXPECT_NE(r.err.find(":6: message bob hi: got SpringBoard crashed: uncaught exception "
                         "NSGenericException: simulated host failure in -[NCNotificationDispatcher "
                         "postNotificationWithRequest:]"),
              std::string::npos)
        << r.err;
  }
}

// A host screen that raises while it opens crashes the app, as any host
// exception does, whether or not the library hooks the screen.
TEST(LifecycleCommands, AScreenThatRaisesAsItOpensCrashesTheApp) {
  for (const char* screen :
       {"SettingAboutMMViewController viewDidLoad\nlaunch\nopen about",
        "BaseMsgContentViewController viewDidAppear:\nlaunch\nopen chat bob"}) {
    Outcome r = run(std::string("friend bob\nhost raises ") + screen + "\n");
    EXPECT_EQ(r.status, 1) << screen;
    EXPECT_NE(r.err.find(":4: open "), std::string::npos) << r.err;
    EXPECT_NE(r.err.find(": app crashed: uncaught exception NSGenericException: simulated host "
                         "failure in -["),
              std::string::npos)
        << r.err;
  }
}

TEST(LifecycleCommands, ASleepingAppGetsMessagesAsRemoteNotificationsAndCallsWakeIt) {
  Outcome r =
      run("friend sam nick=Sam\nlaunch\nbackground\nwait 6\nmessage sam hi\nexpect banner sam\n"
          "expect sound sam\nexpect lockscreen sam\nexpect app suspended\ncall voice sam\n"
          "expect app running\nexpect ringing sam\nwait 10\nexpect app running\nwait 25\n"
          "expect app suspended\nquit\ncall video sam\nexpect app running\n");
  EXPECT_EQ(r.status, 0) << r.err;
}

TEST(LifecycleCommands, SideloadedAndJailbrokenInstallsDifferOnlyInSpringBoard) {
  const char* script =
      "friend sam\nsecret sam\nlaunch\nbackground\nwait 6\nmessage sam hi\nexpect no-banner sam\n";
  EXPECT_EQ(run(std::string("install jailbreak\n") + script).status, 0);
  Outcome side = run(std::string("install sideload\n") + script);
  EXPECT_EQ(side.status, 1) << "nothing guards a side-loaded app's lock screen";
  EXPECT_NE(side.err.find("system banner"), std::string::npos) << side.err;
}

}  // namespace
