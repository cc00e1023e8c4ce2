// The log's private arguments: the whole line where the simulated device keeps
// it, and what a phone's persistent log keeps of it, with each username
// redacted and nothing else.
#include <gtest/gtest.h>

#include "support/sim_world.hpp"
#include "sys/log.hpp"

namespace {

class Log : public qbtest::SimWorld {};

TEST_F(Log, APrivateArgumentIsRedactedInWhatThePhoneKeepsAndOnlyThere) {
  sys::log("[QB] block %@ from %@ video=%d, then %@", std::string("call"), sys::privately("bob"),
           1, sys::privately("team@chatroom"));
  sys::log("[QB] plain %@ %d", std::string("line"), 7);
  sys::log("%@", sys::privately("x\x1fy"));
  const auto& log = device.log();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].text, "[QB] block call from bob video=1, then team@chatroom");
  EXPECT_EQ(log[0].kept, "[QB] block call from <private> video=1, then <private>");
  EXPECT_EQ(log[1].text, "[QB] plain line 7");
  EXPECT_EQ(log[1].kept, log[1].text);
  EXPECT_EQ(log[2].kept, "<private>") << "a mark inside the text cannot split it";
  EXPECT_EQ(log[2].text, "xy");
}

}  // namespace
