// The notification centre and the process's launch and lifecycle sequences.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "support/sim_world.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/process.hpp"
#include "sys/process_state.hpp"
#include "sys/queue.hpp"

namespace {

class Notifications : public qbtest::SimWorld {};

TEST_F(Notifications, AMainThreadPostReachesObserversAtOnceInOrder) {
  std::vector<std::string> seen;
  sys::addObserver("X", [&](const sys::Notification& n) { seen.push_back("a:" + n.name); });
  sys::addObserver("Y", [&](const sys::Notification&) { seen.push_back("other"); });
  sys::addObserver("", [&](const sys::Notification& n) { seen.push_back("all:" + n.name); });
  sys::addObserver("X", [&](const sys::Notification&) { seen.push_back("b"); });
  sys::postNotification("X");
  EXPECT_EQ(seen, (std::vector<std::string>{"a:X", "all:X", "b"}));
}

TEST_F(Notifications, ObserversAddedOrRemovedDuringAPost) {
  std::vector<std::string> seen;
  sys::ObserverToken second;
  sys::addObserver("X", [&](const sys::Notification&) {
    seen.push_back("first");
    sys::removeObserver(second);
    sys::addObserver("X", [&](const sys::Notification&) { seen.push_back("late"); });
  });
  second = sys::addObserver("X", [&](const sys::Notification&) { seen.push_back("second"); });
  sys::postNotification("X");
  EXPECT_EQ(seen, (std::vector<std::string>{"first"}));
  sys::postNotification("X");
  EXPECT_EQ(seen, (std::vector<std::string>{"first", "first", "late"}));
}

TEST(ProcessLifecycle, LaunchPostsThePlatformSequenceAroundTheLibraryAndHost) {
  sim::Device device;
  sim::Process process(device);
  std::vector<std::string> seen;
  sim::LaunchHooks hooks;
  hooks.libraryEntry = [&] {
    seen.push_back("library");
    sys::addObserver("", [&](const sys::Notification& n) { seen.push_back(n.name); });
    sys::async([&] { seen.push_back("main-queue"); });
  };
  hooks.hostDidFinishLaunching = [&] { seen.push_back("host-first-screen"); };
  process.launch(hooks);
  EXPECT_EQ(seen, (std::vector<std::string>{"library", "host-first-screen",
                                            sys::kDidFinishLaunching, sys::kSceneWillConnect,
                                            sys::kSceneWillEnterForeground, "main-queue",
                                            sys::kSceneDidActivate, sys::kDidBecomeActive}));
  EXPECT_EQ(process.appState(), sim::AppState::Active);
  EXPECT_DOUBLE_EQ(device.elapsed(), 0) << "launch takes no virtual time";
}

// A launched app whose every notification is recorded with the state the app
// was in when it came.
struct Recorded {
  sim::Device device;
  sim::Process process{device};
  std::vector<std::string> seen;
  Recorded() {
    process.launch({});
    sys::addObserver("", [this](const sys::Notification& n) {
      seen.push_back(n.name + "/" + sim::appStateName(process.appState()));
    });
  }
};

TEST(ProcessLifecycle, BackgroundAndForegroundInPlatformOrder) {
  Recorded r;
  ASSERT_TRUE(r.process.enterBackground());
  EXPECT_FALSE(r.process.enterBackground()) << "already there";
  ASSERT_TRUE(r.process.enterForeground());
  EXPECT_FALSE(r.process.enterForeground());
  EXPECT_EQ(r.seen, (std::vector<std::string>{
                        std::string(sys::kSceneWillDeactivate) + "/active",
                        std::string(sys::kWillResignActive) + "/active",
                        std::string(sys::kSceneDidEnterBackground) + "/background",
                        std::string(sys::kDidEnterBackground) + "/background",
                        std::string(sys::kSceneWillEnterForeground) + "/background",
                        std::string(sys::kWillEnterForeground) + "/background",
                        std::string(sys::kSceneDidActivate) + "/active",
                        std::string(sys::kDidBecomeActive) + "/active",
                    }));
}

// A Face ID prompt interrupts as leaving begins: the same two, in the same order.
TEST(ProcessLifecycle, ASystemPromptDeactivatesAsLeavingDoes) {
  Recorded r;
  r.process.platform().biometricReply = [](bool) {};
  r.process.systemPromptAppeared();
  ASSERT_TRUE(r.process.answerSystemPrompt(true));
  EXPECT_EQ(r.seen, (std::vector<std::string>{
                        std::string(sys::kSceneWillDeactivate) + "/active",
                        std::string(sys::kWillResignActive) + "/active",
                        std::string(sys::kSceneDidActivate) + "/active",
                        std::string(sys::kDidBecomeActive) + "/active",
                    }));
}

TEST(ProcessLifecycle, AnExceptionEscapingIntoTheHostCrashesTheProcess) {
  sim::Device device;
  sim::Process process(device);
  process.launch({});
  bool ranAfter = false;
  sys::async([] { rt::raise("NSRangeException", "index 3 beyond bounds"); });
  sys::async([&] { ranAfter = true; });
  process.runDue();
  EXPECT_TRUE(process.crashed());
  EXPECT_EQ(process.crashReason(), "uncaught exception NSRangeException: index 3 beyond bounds");
  EXPECT_FALSE(ranAfter) << "a crashed app runs nothing more";
}

struct Counter {
  int value = 0;
};

TEST(ProcessLifecycle, EveryProcessHasFreshLibraryStateAndTheDeviceKeepsTheLog) {
  sim::Device device;
  auto make = []() -> std::shared_ptr<void> { return std::make_shared<Counter>(); };
  {
    sim::Process first(device);
    static_cast<Counter*>(sys::processStateSlot(make))->value = 5;
    EXPECT_EQ(static_cast<Counter*>(sys::processStateSlot(make))->value, 5) << "made once";
    sys::log("[QB] %@ %d", std::string("first"), 1);
  }
  sim::Process second(device);
  EXPECT_EQ(static_cast<Counter*>(sys::processStateSlot(make))->value, 0);
  ASSERT_EQ(device.log().size(), 1u);
  EXPECT_EQ(device.log()[0].text, "[QB] first 1");
}

struct Other {
  std::string text;
};

// Each kind of state has its own slot, the same object on every read, and a
// new process (which may take the last one's address) starts them all anew.
TEST(ProcessLifecycle, EachKindOfStateIsOneObjectPerProcess) {
  sim::Device device;
  Counter* firstCounter = nullptr;
  {
    sim::Process first(device);
    firstCounter = &sys::state<Counter>();
    sys::state<Counter>().value = 7;
    sys::state<Other>().text = "kept";
    EXPECT_EQ(&sys::state<Counter>(), firstCounter);
    EXPECT_NE(static_cast<void*>(&sys::state<Other>()), static_cast<void*>(firstCounter));
    EXPECT_EQ(sys::state<Counter>().value, 7);
    EXPECT_EQ(sys::state<Other>().text, "kept");
  }
  for (int i = 0; i < 3; ++i) {
    sim::Process next(device);
    EXPECT_EQ(sys::state<Counter>().value, 0);
    EXPECT_EQ(sys::state<Other>().text, "");
    sys::state<Counter>().value = i + 1;
    sys::state<Other>().text = "changed";
    EXPECT_EQ(sys::state<Counter>().value, i + 1);
  }
}

}  // namespace
