// Object lifetimes in the simulated runtime, as a phone keeps them: owners
// retain, the last release frees, weak handles read nil after, autoreleased
// objects last to the end of the turn, and a message to a freed object stops
// the process with a line that names it.
#include <gtest/gtest.h>

#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"
#include "sys/queue.hpp"
#include "ui/alerts.hpp"
#include "ui/gestures.hpp"

namespace {

using rt::Id;

class Lifetimes : public qbtest::HostWorld {
 protected:
  void SetUp() override { start(); }
  Id make(const char* cls) { return rt::send<Id>(rt::getClass(cls), "new"); }
  // Ends the test's process after a crash it expected.
  void endCrashed() { process.reset(); }
};

TEST_F(Lifetimes, AWeakHandleReadsNilOnceTheLastStrongOneIsGone) {
  rt::Weak weak;
  {
    rt::Strong owner = rt::Strong::adopt(make("UIView"));
    weak = rt::Weak(owner.get());
    rt::Strong second = owner;
    owner.reset();
    EXPECT_TRUE(weak.lock()) << "a second owner keeps it";
    rt::Weak copied = weak;
    EXPECT_EQ(copied.lock().get(), second.get());
  }
  EXPECT_FALSE(weak.lock());
}

TEST_F(Lifetimes, AutoreleasedObjectsLastToTheEndOfTheirTurn) {
  rt::Weak weak;
  process->runGuarded([&] {
    weak = rt::Weak(ui::makeAlert("t", "m"));
    EXPECT_TRUE(weak.lock());
  });
  EXPECT_FALSE(weak.lock());
  // A main-queue block is a turn of its own.
  rt::Weak later;
  sys::async([&] { later = rt::Weak(ui::makeAlert("t", "m")); });
  sys::async([&] { EXPECT_FALSE(later.lock()) << "drained between blocks"; });
  wait(0);
}

TEST_F(Lifetimes, APoppedScreenGoesWithItsViewsRecognizersAndAssociatedObjects) {
  rt::Weak page, label, tap, associated, assigned;
  Id keptAssigned = make("UIView");
  process->runGuarded([&] {
    Id nav = rt::send<Id>(host.tabs(), "selectedViewController");
    Id vc = sim::autorelease(make("UIViewController"));
    rt::send<void>(nav, "pushViewController:animated:", vc, true);
    Id l = sim::autorelease(make("UILabel"));
    rt::send<void>(rt::send<Id>(vc, "view"), "addSubview:", l);
    static const char kKey = 0, kAssignKey = 0;
    Id extra = sim::autorelease(make("UIView"));
    rt::setAssociatedObject(vc, &kKey, extra);
    rt::setAssociatedObject(vc, &kAssignKey, keptAssigned, rt::Association::Assign);
    page = rt::Weak(vc);
    label = rt::Weak(l);
    tap = rt::Weak(ui::addTap(l, true, [](Id) {}));
    associated = rt::Weak(extra);
    assigned = rt::Weak(keptAssigned);
  });
  EXPECT_TRUE(page.lock() && label.lock() && tap.lock() && associated.lock());
  process->runGuarded([&] { host.popToRoot(); });
  EXPECT_FALSE(page.lock());
  EXPECT_FALSE(label.lock());
  EXPECT_FALSE(tap.lock());
  EXPECT_FALSE(associated.lock());
  EXPECT_TRUE(assigned.lock()) << "an assigned association owns nothing";
}

TEST_F(Lifetimes, APresenterOwnsWhatItPresentsUntilItIsDismissed) {
  rt::Weak weak;
  Id root = sim::topController();
  process->runGuarded([&] {
    Id alert = ui::makeAlert("t", "m");
    ASSERT_TRUE(ui::present(root, alert, true));
    weak = rt::Weak(alert);
  });
  EXPECT_TRUE(weak.lock());
  process->runGuarded(
      [&] { sim::dismissPresented(rt::send<Id>(root, "presentedViewController")); });
  EXPECT_FALSE(weak.lock());
}

TEST_F(Lifetimes, AMessageToAFreedObjectStopsTheProcessNamingIt) {
  Id view = make("UIView");
  process->runGuarded([&] {
    rt::Strong::adopt(view).reset();
    rt::send<long>(view, "tag");
  });
  ASSERT_TRUE(process->crashed());
  EXPECT_EQ(process->crashReason(), "message sent to a freed object: -[UIView tag]");
  process->advance(1);  // a stopped process runs nothing more
  endCrashed();
}

TEST_F(Lifetimes, AFreedObjectCaughtByTheSenderStillStopsTheProcess) {
  Id view = make("UILabel");
  process->runGuarded([&] {
    rt::Strong::adopt(view).reset();
    try {
      rt::send<Id>(view, "text");
    } catch (...) {  // as a hook's guard would
    }
  });
  EXPECT_TRUE(process->crashed());
  EXPECT_EQ(process->crashReason(), "message sent to a freed object: -[UILabel text]");
  endCrashed();
}

// A hook calling the host's stored original reaches the receiver as a send would.
TEST_F(Lifetimes, AStoredOriginalCalledOnAFreedObjectStopsTheProcess) {
  rt::Method m = rt::getInstanceMethod(rt::getClass("UIView"), rt::sel("tag"));
  ASSERT_NE(m, nullptr);
  rt::IMP original = rt::methodImplementation(m);
  Id view = make("UIView");
  process->runGuarded([&] {
    EXPECT_EQ(rt::call<long>(original, view, rt::sel("tag")), 0);
    rt::Strong::adopt(view).reset();
    rt::call<long>(original, view, rt::sel("tag"));
  });
  ASSERT_TRUE(process->crashed());
  EXPECT_EQ(process->crashReason(), "message sent to a freed object: -[UIView tag]");
  endCrashed();
}

TEST_F(Lifetimes, TheKinderSwitchKeepsWhatNoOneOwns) {
  process->runtime().lifetimes().strict = false;
  Id view = make("UIView");
  rt::Weak weak(view);
  rt::Strong::adopt(view).reset();
  EXPECT_TRUE(weak.lock());
  EXPECT_EQ(rt::send<long>(view, "tag"), 0);
}

}  // namespace
