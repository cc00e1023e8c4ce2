// The simulator's message and call commands: what is a script error, what
// an expectation on a user who never wrote or called says.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "runner.hpp"

namespace {

int runLines(const std::string& text, std::string& out) {
  qbsim::Session session({}, std::cout);
  std::istringstream in(text);
  std::ostringstream err;
  int status = qbsim::runScript(session, in, "s.qbs", err);
  out = err.str();
  return status;
}

TEST(NotifyCommands, ScriptErrors) {
  std::string out;
  EXPECT_EQ(runLines("host variant no-such-build\n", out), 2);
  EXPECT_NE(out.find("s.qbs:1: host variant: unknown variant 'no-such-build'"), std::string::npos)
      << out;
  EXPECT_EQ(runLines("launch\nhost variant push-3arg\n", out), 2)
      << "variants are chosen before launch";
  EXPECT_EQ(runLines("call voice bob\ncall voice bob\n", out), 0)
      << "a call launches the app in the background, then wakes it";
  EXPECT_EQ(runLines("launch\ncall audio bob\n", out), 2);
  EXPECT_EQ(runLines("launch\ncall voice\n", out), 2);
  EXPECT_EQ(runLines("launch\nexpect banner\n", out), 2);
}

TEST(NotifyCommands, ExpectationsNeedSomethingFromThatUser) {
  std::string out;
  EXPECT_EQ(runLines("launch\nexpect no-banner nobody\n", out), 1);
  EXPECT_NE(out.find("no message or call from nobody"), std::string::npos) << out;
  EXPECT_EQ(runLines("launch\nmessage alice hi\nexpect no-ringing alice\n", out), 1);
  EXPECT_NE(out.find("no call from alice"), std::string::npos) << out;
  EXPECT_EQ(runLines("launch\nmessage alice hi\nexpect no-banner alice\n", out), 1);
  EXPECT_NE(out.find("got message: in-app banner, sound"), std::string::npos) << out;
}

}  // namespace
