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
