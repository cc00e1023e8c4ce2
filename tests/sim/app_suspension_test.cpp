// The app's life as iOS runs it: suspension after the grace, timers that fall
// behind while suspended, VoIP wakes, background launches, the current
// process among several, and notifications presented through SpringBoard.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sim/springboard/springboard.hpp"
#include "sys/queue.hpp"

namespace {

using sim::Process;

struct Launched {
  sim::Device device;
  Process app{device};
  std::vector<std::string> events;
  bool busy = false;

  Launched() {
    sim::LaunchHooks hooks;
    hooks.hostDidResume = [this] { events.push_back("resumed"); };
    hooks.hostBusy = [this] { return busy; };
    app.launch(hooks);
  }
};

TEST(AppSuspension, SuspendedOnlyAfterTheGraceAndRunsNothingThen) {
  Launched w;
  int ran = 0;
  sys::after(3, [&] { ++ran; });
  sys::after(8, [&] { ++ran; });
  ASSERT_TRUE(w.app.enterBackground());
  w.app.advance(Process::kSuspendGrace_s - 0.01);
  EXPECT_FALSE(w.app.suspended());
  EXPECT_EQ(ran, 1);
  w.app.advance(0.02);
  EXPECT_TRUE(w.app.suspended());
  w.app.advance(60);
  EXPECT_EQ(ran, 1) << "a suspended app ran a block";
  double at = 0;
  EXPECT_FALSE(w.app.nextEvent(at));
  ASSERT_TRUE(w.app.enterForeground());
  EXPECT_FALSE(w.app.suspended());
  EXPECT_EQ(ran, 2) << "the overdue block runs on resuming";
  EXPECT_EQ(w.events, std::vector<std::string>{"resumed"});
}

TEST(AppSuspension, AnOverdueRepeatingTimerFiresOnceThenKeepsItsPhase) {
  Launched w;
  std::vector<double> ticks;
  sys::scheduleRepeatingTimer(10, [&] { ticks.push_back(w.device.elapsed()); });
  w.app.advance(22);
  EXPECT_EQ(ticks, (std::vector<double>{10, 20}));
  w.app.enterBackground();  // at 22; suspended at 27
  w.app.advance(103);       // to 125: ticks at 30..120 missed
  EXPECT_EQ(ticks.size(), 2u);
  w.app.enterForeground();
  ASSERT_EQ(ticks.size(), 3u) << "missed ticks must fire once, not once each";
  EXPECT_DOUBLE_EQ(ticks[2], 125);
  w.app.advance(10);  // the next tick keeps the timer's phase: 130
  ASSERT_EQ(ticks.size(), 4u);
  EXPECT_DOUBLE_EQ(ticks[3], 130);
}

TEST(AppSuspension, ComingBackWithinTheGraceCancelsTheSuspension) {
  Launched w;
  w.app.enterBackground();
  w.app.advance(2);
  w.app.enterForeground();
  w.app.advance(60);
  EXPECT_FALSE(w.app.suspended());
  EXPECT_TRUE(w.events.empty()) << "never suspended, so never resumed";
  w.app.enterBackground();
  w.app.advance(Process::kSuspendGrace_s + 0.01);
  EXPECT_TRUE(w.app.suspended()) << "the grace counts from the latest departure";
}

TEST(AppSuspension, AWakeRunsTheAppForAnotherGrace) {
  Launched w;
  EXPECT_FALSE(w.app.wake()) << "an app in the foreground is not woken";
  w.app.enterBackground();
  w.app.advance(30);
  ASSERT_TRUE(w.app.suspended());
  ASSERT_TRUE(w.app.wake());
  EXPECT_FALSE(w.app.suspended());
  w.app.advance(Process::kSuspendGrace_s - 0.5);
  EXPECT_FALSE(w.app.suspended());
  w.app.advance(1);
  EXPECT_TRUE(w.app.suspended());
}

TEST(AppSuspension, AnAppWithACallInProgressIsKeptRunning) {
  Launched w;
  w.app.enterBackground();
  w.busy = true;
  w.app.advance(40);
  EXPECT_FALSE(w.app.suspended());
  w.busy = false;
  w.app.advance(Process::kSuspendGrace_s + 0.01);
  EXPECT_TRUE(w.app.suspended());
}

TEST(AppSuspension, ABackgroundLaunchRunsTheHostButNoForeground) {
  sim::Device device;
  Process app(device);
  std::vector<std::string> seen;
  sim::LaunchHooks hooks;
  hooks.hostDidFinishLaunching = [&] { seen.push_back("finished"); };
  hooks.hostDidBecomeActive = [&] { seen.push_back("active"); };
  app.launchInBackground(hooks);
  EXPECT_EQ(seen, std::vector<std::string>{"finished"});
  EXPECT_EQ(app.appState(), sim::AppState::Background);
  EXPECT_EQ(device.frontmostApp(), "");
  app.advance(Process::kSuspendGrace_s + 0.01);
  EXPECT_TRUE(app.suspended());
  ASSERT_TRUE(app.enterForeground());
  EXPECT_EQ(device.frontmostApp(), device.appBundleIdentifier());
}

TEST(AppSuspension, TheDeviceKnowsWhichAppIsInFront) {
  Launched w;
  EXPECT_EQ(w.device.frontmostApp(), w.device.appBundleIdentifier());
  w.app.enterBackground();
  EXPECT_EQ(w.device.frontmostApp(), "");
  w.app.enterForeground();
  EXPECT_EQ(w.device.frontmostApp(), w.device.appBundleIdentifier());
}

TEST(Processes, TheNewestLiveProcessIsCurrentAndAThreadMayEnterAnother) {
  sim::Device device;
  auto first = std::make_unique<Process>(device, sim::ProcessKind::SpringBoard);
  Process* sb = first.get();
  {
    Process app(device);
    EXPECT_EQ(&sim::currentProcess(), &app);
    {
      sim::InProcess in(*sb);
      EXPECT_EQ(&sim::currentProcess(), sb);
    }
    EXPECT_EQ(&sim::currentProcess(), &app);
  }
  EXPECT_EQ(&sim::currentProcess(), sb) << "the app ended: the one left is current";
  // An older process ending leaves the current one current.
  auto app = std::make_unique<Process>(device);
  first.reset();
  EXPECT_EQ(&sim::currentProcess(), app.get());
}

TEST(Processes, EachProcessHasItsOwnClasses) {
  sim::Device device;
  Process sb(device, sim::ProcessKind::SpringBoard);
  springboard::boot(
      sb, [](const std::string&, const std::string&) { return false; }, nullptr);
  Process app(device);
  EXPECT_EQ(rt::getClass("NCNotificationDispatcher"), nullptr);
  sim::InProcess in(sb);
  EXPECT_NE(rt::getClass("NCNotificationDispatcher"), nullptr);
}

TEST(Processes, WorkInTwoProcessesRunsInTimeOrderAcrossThem) {
  sim::Device device;
  Process a(device, sim::ProcessKind::SpringBoard);
  std::vector<std::string> order;
  {
    sim::InProcess in(a);
    sys::after(2, [&] { order.push_back("a2"); });
    sys::after(5, [&] { order.push_back("a5"); });
  }
  Process b(device);
  sys::after(1, [&] { order.push_back("b1"); });
  sys::after(3, [&] {
    order.push_back("b3");
    sys::after(1, [&] { order.push_back("b4"); });
  });
  sim::advanceProcesses({&a, &b}, 10);
  EXPECT_EQ(order, (std::vector<std::string>{"b1", "a2", "b3", "b4", "a5"}));
  EXPECT_DOUBLE_EQ(device.elapsed(), 10);
}

struct WithSpringBoard {
  sim::Device device;
  Process sb{device, sim::ProcessKind::SpringBoard};
  std::set<std::string> lacking;

  void boot() {
    springboard::boot(
        sb,
        [this](const std::string& c, const std::string& s) {
          return lacking.count(c + " " + s) > 0;
        },
        nullptr);
    device.setPresenter([this](const sim::SystemNotification& n) { springboard::present(sb, n); });
  }
  sim::SystemNotification note(bool sound) {
    sim::SystemNotification n;
    n.bundleIdentifier = device.appBundleIdentifier();
    n.identifier = "push-1";
    n.title = "Bob";
    n.body = "hi";
    n.threadIdentifier = "bob";
    n.userInfo = base::Value(base::Dictionary{{"fromUserName", base::Value("bob")}});
    n.sound = sound;
    return n;
  }
};

TEST(SpringBoardPresents, WhatTheRequestCarries) {
  WithSpringBoard w;
  w.boot();
  w.device.notices().begin("bob", "message", "hi", 0);
  w.device.present(w.note(true));
  auto a = w.device.notices().latest("bob");
  ASSERT_TRUE(a);
  EXPECT_EQ(a->banner, "system");
  EXPECT_TRUE(a->sound);
  auto delivered = w.device.records().delivered();
  ASSERT_EQ(delivered.size(), 1u);
  EXPECT_EQ(delivered[0].title, "Bob");
  EXPECT_EQ(delivered[0].threadIdentifier, "bob");
  EXPECT_EQ(delivered[0].from, "bob");
  ASSERT_NE(delivered[0].userInfo.find("fromUserName"), nullptr);
  EXPECT_EQ(*delivered[0].userInfo.find("fromUserName")->asString(), "bob");

  w.device.notices().begin("bob", "message", "quiet", 0);
  w.device.present(w.note(false));
  EXPECT_FALSE(w.device.notices().latest("bob")->sound);
}

TEST(SpringBoardPresents, WithoutItsDispatcherAsTheRequestCame) {
  WithSpringBoard w;
  w.lacking.insert("NCNotificationDispatcher ");
  w.boot();
  w.device.notices().begin("bob", "message", "hi", 0);
  w.device.present(w.note(true));
  EXPECT_TRUE(w.device.notices().latest("bob")->sound);
  EXPECT_EQ(w.device.records().delivered().size(), 1u);
}

TEST(SpringBoardPresents, AHookOnTheDispatcherDecides) {
  WithSpringBoard w;
  w.boot();
  {
    sim::InProcess in(w.sb);
    // A stand-in for a guard: drops every request.
    rt::Method m = rt::getInstanceMethod(rt::getClass("NCNotificationDispatcher"),
                                         rt::sel("postNotificationWithRequest:"));
    ASSERT_NE(m, nullptr);
    rt::setImplementation(m, reinterpret_cast<rt::IMP>(+[](rt::Id, rt::SEL, rt::Id) {}));
  }
  w.device.notices().begin("bob", "message", "hi", 0);
  w.device.present(w.note(true));
  auto a = w.device.notices().latest("bob");
  EXPECT_EQ(a->banner, "");
  EXPECT_FALSE(a->sound);
  EXPECT_TRUE(w.device.records().delivered().empty());
}

}  // namespace
