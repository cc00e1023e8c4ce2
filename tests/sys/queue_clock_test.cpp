// The main queue, timers and the three clocks in virtual time.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/sim_world.hpp"
#include "sys/clock.hpp"
#include "sys/queue.hpp"

namespace {

class VirtualTime : public qbtest::SimWorld {
 protected:
  std::vector<std::string> order;
  auto note(std::string s) {
    return [this, s] {
      order.push_back(s + "@" + std::to_string(sys::mediaTime() - sim::Device::kBootUptime));
    };
  }
};

TEST_F(VirtualTime, BlocksRunByDueTimeThenSubmissionOrder) {
  sys::after(0.5, note("late"));
  sys::async(note("first"));
  sys::after(0.2, note("early"));
  sys::async(note("second"));
  sys::after(0.5, note("late2"));
  sys::after(-1, note("negative"));
  EXPECT_TRUE(order.empty()) << "nothing runs until the queue is driven";
  process.advance(1.0);
  EXPECT_EQ(order,
            (std::vector<std::string>{"first@0.000000", "second@0.000000", "negative@0.000000",
                                      "early@0.200000", "late@0.500000", "late2@0.500000"}));
  EXPECT_DOUBLE_EQ(device.elapsed(), 1.0);
}

TEST_F(VirtualTime, BlocksQueuedWhileRunningKeepTheRules) {
  sys::async([this] {
    order.push_back("outer");
    sys::async(note("inner-async"));
    sys::after(0.1, note("inner-after"));
  });
  sys::after(0.1, note("queued-before"));
  process.runDue();
  EXPECT_EQ(order, (std::vector<std::string>{"outer", "inner-async@0.000000"}))
      << "runDue runs what falls due now, including what it queues for now";
  process.advance(0.1);
  EXPECT_EQ(order.back(), "inner-after@0.100000");
  EXPECT_EQ(order[2], "queued-before@0.100000") << "same due time: submission order";
}

TEST_F(VirtualTime, AdvanceStopsAtItsEnd) {
  sys::after(2.0, note("two"));
  process.advance(1.999);
  EXPECT_TRUE(order.empty());
  process.advance(0.001);
  EXPECT_EQ(order.size(), 1u);
}

TEST_F(VirtualTime, RepeatingTimersTickEveryIntervalUntilInvalidated) {
  int ticks = 0;
  sys::Timer t = sys::scheduleRepeatingTimer(30, [&] { ++ticks; });
  process.advance(29.9);
  EXPECT_EQ(ticks, 0) << "the first tick is one interval from now";
  process.advance(0.1);
  EXPECT_EQ(ticks, 1);
  process.advance(95);
  EXPECT_EQ(ticks, 4);
  sys::invalidateTimer(t);
  process.advance(300);
  EXPECT_EQ(ticks, 4);
  sys::invalidateTimer(t);  // twice is harmless
}

TEST_F(VirtualTime, TimersAndBlocksInterleaveByTime) {
  sys::scheduleRepeatingTimer(1.0, note("tick"));
  sys::after(1.5, note("block"));
  process.advance(2.0);
  EXPECT_EQ(order, (std::vector<std::string>{"tick@1.000000", "block@1.500000", "tick@2.000000"}));
}

TEST_F(VirtualTime, ClocksMoveTogetherAndTheWallClockCanBeSet) {
  double media = sys::mediaTime(), abs = sys::absoluteTime();
  EXPECT_GT(media, 1000.0) << "a phone has been up a while: throttles starting at 0 must not fire";
  EXPECT_EQ(sys::localMinuteOfDay(), 12 * 60) << "the default time is 12:00";
  process.advance(90);
  EXPECT_DOUBLE_EQ(sys::mediaTime() - media, 90);
  EXPECT_DOUBLE_EQ(sys::absoluteTime() - abs, 90);
  EXPECT_EQ(sys::localMinuteOfDay(), 12 * 60 + 1);
  EXPECT_EQ(sys::localTime().second, 30);
  device.setLocalTime(7, 59);
  EXPECT_EQ(sys::localMinuteOfDay(), 7 * 60 + 59);
  EXPECT_DOUBLE_EQ(sys::mediaTime() - media, 90) << "the monotonic clock ignores the wall clock";
  process.advance(60);
  EXPECT_EQ(sys::localMinuteOfDay(), 8 * 60);
  device.setLocalTime(23, 59);
  process.advance(120);
  EXPECT_EQ(sys::localMinuteOfDay(), 1) << "past midnight";
}

}  // namespace
