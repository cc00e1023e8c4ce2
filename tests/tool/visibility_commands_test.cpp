// expect hidden / expect revealed look at the lists a person sees, not only
// at the reveal state: with nothing hooked they name every place a secret
// shows; they never change the screen on top; a list whose host code raises
// does not take the app down.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "runner.hpp"

namespace {

struct Result {
  int status;
  std::string out;
};

Result runLines(const std::string& text, bool withoutLibrary = false) {
  qbsim::SimOptions options;
  options.withoutLibrary = withoutLibrary;
  qbsim::Session session(options, std::cout);
  std::istringstream in(text);
  std::ostringstream err;
  int status = qbsim::runScript(session, in, "s.qbs", err);
  return {status, err.str()};
}

// bob, the secret, is everywhere a person could meet him; alice is not secret.
const std::string kWorld =
    "friend alice nick=Alice\n"
    "friend bob nick=Bob remark=Bobby\n"
    "session bob\n"
    "session alice\n"
    "moment bob\n"
    "moment alice\n"
    "secret bob\n"
    "launch\n"
    "open chat bob\n"
    "open chat alice\n"
    "open main\n";

TEST(VisibilityCommands, HiddenNamesEveryListThatShowsASecret) {
  Result r = runLines(kWorld + "expect hidden\n", /*withoutLibrary=*/true);
  EXPECT_EQ(r.status, 1) << r.out;
  for (const char* place :
       {"bob on the main list", "bob on the contacts list", "bob in a search for \"Bobby\"",
        "bob in a search for \"bob\"", "bob in Moments", "bob on the forward row"})
    EXPECT_NE(r.out.find(place), std::string::npos) << place << "\n" << r.out;
  EXPECT_EQ(r.out.find("alice "), std::string::npos) << "only secrets are named\n" << r.out;
}

TEST(VisibilityCommands, HiddenLooksAtTheStarredContactsToo) {
  for (bool withoutLibrary : {true, false}) {
    qbsim::SimOptions options;
    options.withoutLibrary = withoutLibrary;
    qbsim::Session session(options, std::cout);
    std::string message;
    for (const char* line : {"friend bob nick=Bob", "secret bob"})
      ASSERT_EQ(qbsim::runCommandLine(session, line, message), 0) << message;
    session.host().model.findFriend("bob")->favourite = true;
    ASSERT_EQ(qbsim::runCommandLine(session, "launch", message), 0) << message;
    int status = qbsim::runCommandLine(session, "expect hidden", message);
    if (withoutLibrary) {
      EXPECT_EQ(status, 1);
      EXPECT_NE(message.find("bob among the starred contacts"), std::string::npos) << message;
    } else {
      EXPECT_EQ(status, 0) << message;
    }
  }
}

TEST(VisibilityCommands, HiddenHoldsWhenTheLibraryHidesAndLeavesTheScreenAlone) {
  // The search for bob's names runs beside the open search, not in its place.
  Result r = runLines(kWorld +
                      "open search Ali\n"
                      "expect hidden\n"
                      "expect screen search\n"
                      "expect search alice\n");
  EXPECT_EQ(r.status, 0) << r.out;
}

TEST(VisibilityCommands, HiddenAsksEveryRowNotOnlyThoseThatFit) {
  // 25 chats above the secret's: the screen shows 20 rows, the list answers all.
  std::string lines = "friend bob nick=Bob\nsession bob\n";
  for (int i = 0; i < 25; ++i) lines += "session u" + std::to_string(i) + "\n";
  lines += "secret bob\nlaunch\nexpect hidden\n";
  Result r = runLines(lines, /*withoutLibrary=*/true);
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_NE(r.out.find("bob on the main list"), std::string::npos) << r.out;
}

TEST(VisibilityCommands, AHostListThatRaisesAnswersNothingAndTheAppRuns) {
  Result r = runLines(
      "friend bob nick=Bob\nmoment bob\nsecret bob\n"
      "host raises WCFacade countOfTimelineDataItem\n"
      "launch\nexpect hidden\nexpect screen main\n");
  EXPECT_EQ(r.status, 0) << r.out;
}

// Revealed is the state, at once; the lists follow it a moment later, and
// are looked at with their own checks.
TEST(VisibilityCommands, RevealedIsTheStateAndTheListsFollowIt) {
  const std::string reveal = "shake\ntype 7351\npress 确定\n";
  Result r = runLines(kWorld + reveal + "expect revealed\nwait 1\nexpect main alice bob\n");
  EXPECT_EQ(r.status, 0) << r.out;
  r = runLines(kWorld + "expect revealed\n");
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_NE(r.out.find("expect revealed: got hidden"), std::string::npos) << r.out;

  // A build that cannot rebuild its session list keeps the secret's chat out
  // of the main list, whatever the reveal state says.
  r = runLines("host lacks MainSessionMgr rebuildMainSessions\n" + kWorld + reveal +
               "expect revealed\nwait 1\nexpect main alice bob\n");
  EXPECT_EQ(r.status, 1) << r.out;
  EXPECT_NE(r.out.find("expect main alice bob: got alice\n"), std::string::npos) << r.out;
}

// Two scenarios that once passed on the reveal state alone.
TEST(VisibilityCommands, LifecycleScenariosFailWithNothingHooked) {
  for (const char* name : {"host_variants.qbs", "app_lifecycle.qbs"}) {
    std::string path = std::string(QUENBY_SOURCE_DIR) + "/tests/scenarios/" + name;
    qbsim::SimOptions alone;
    alone.withoutLibrary = true;
    std::ostringstream out;
    EXPECT_EQ(qbsim::runFiles({path}, alone, out), 1) << name << "\n" << out.str();
    EXPECT_NE(out.str().find("expect hidden: got hidden, but "), std::string::npos) << out.str();
  }
}

}  // namespace
