// Taps and pushes as UIKit delivers them: one recognizer along the hit view's
// chain recognizes a tap, a control's touch-up action follows unless that
// recognizer cancels touches in its view, and a pushed screen loads and
// appears as the one it covers disappears.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"
#include "ui/gestures.hpp"

namespace {

using rt::Id;

std::vector<std::string> events;

void buttonAction(Id, rt::SEL, Id) { events.push_back("button"); }
void record(Id self, rt::SEL cmd) {
  events.push_back(std::string(rt::className(rt::classOf(self))) + " " +
                   std::string(rt::selName(cmd)));
}
void recordAnimated(Id self, rt::SEL cmd, bool) { record(self, cmd); }

class Touches : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    events.clear();
    start();
    root = rt::send<Id>(rt::getClass("UIView"), "new");
    sim::viewState(root)->frame = {{0, 0}, {300, 300}};
  }
  Id add(const char* cls, Id parent, rt::CGRect frame) {
    Id v = sim::autorelease(rt::send<Id>(rt::getClass(cls), "new"));
    sim::viewState(v)->frame = frame;
    rt::send<void>(parent, "addSubview:", v);
    return v;
  }
  Id tap(Id view, bool cancels, const std::string& name) {
    Id g = nullptr;
    process->runGuarded(
        [&] { g = ui::addTap(view, cancels, [name](Id) { events.push_back(name); }); });
    return g;
  }
  Id button(Id parent) {
    Id b = add("UIControl", parent, {{10, 10}, {50, 50}});
    rt::Class target =
        sim::ClassBuilder("TouchTarget", "NSObject").method("hit:", buttonAction).build();
    // A control does not retain its target: this one lives to the end of the process.
    Id t = rt::send<Id>(target, "new");
    rt::send<void>(b, "addTarget:action:forControlEvents:", t, rt::sel("hit:"), 1ul << 6);
    return b;
  }
  bool tapAt(double x, double y) {
    bool acted = false;
    process->runGuarded([&] { acted = sim::tapAt(root, {x, y}); });
    return acted;
  }
  Id root = nullptr;
};

TEST_F(Touches, OneTapRecognizerAlongTheChainRecognizesTheDeepestFirst) {
  Id child = add("UIView", root, {{100, 100}, {50, 50}});
  Id inner = tap(child, false, "child");
  Id outer = tap(root, false, "root");
  tap(root, false, "root again");
  EXPECT_TRUE(tapAt(120, 120));
  EXPECT_EQ(events, std::vector<std::string>{"child"});
  // The root's recognizer had the touch too, though it did not recognize.
  rt::CGPoint seen = ui::locationInView(outer, child);
  EXPECT_DOUBLE_EQ(seen.x, 20);
  EXPECT_DOUBLE_EQ(seen.y, 20);
  EXPECT_EQ(ui::gestureState(inner), ui::GestureState::Possible);
  events.clear();
  EXPECT_TRUE(tapAt(10, 250));
  EXPECT_EQ(events, std::vector<std::string>{"root"});
  // A view that takes no touches hands them to its superview's recognizers.
  sim::viewState(child)->userInteraction = false;
  events.clear();
  EXPECT_TRUE(tapAt(120, 120));
  EXPECT_EQ(events, std::vector<std::string>{"root"});
}

TEST_F(Touches, ALongPressDoesNotTakeATapFromTheViewAbove) {
  Id child = add("UIView", root, {{0, 0}, {100, 100}});
  bool pressed = false;
  process->runGuarded([&] { ui::addLongPress(child, 0.5, true, [&](Id) { pressed = true; }); });
  tap(root, false, "root");
  EXPECT_TRUE(tapAt(50, 50));
  EXPECT_FALSE(pressed);
  EXPECT_EQ(events, std::vector<std::string>{"root"});
}

TEST_F(Touches, ARecognizerThatCancelsTouchesKeepsTheControlsActionFromRunning) {
  Id b = button(root);
  tap(b, true, "tap");
  EXPECT_TRUE(tapAt(20, 20));
  EXPECT_EQ(events, std::vector<std::string>{"tap"});
}

TEST_F(Touches, ARecognizerThatLetsTouchesThroughRunsBeforeTheControlsAction) {
  Id b = button(root);
  tap(b, false, "tap");
  EXPECT_TRUE(tapAt(20, 20));
  EXPECT_EQ(events, (std::vector<std::string>{"tap", "button"}));
}

TEST_F(Touches, AControlsOwnTapWinsOverARecognizerAboveIt) {
  button(root);
  tap(root, true, "root");
  EXPECT_TRUE(tapAt(20, 20));
  EXPECT_EQ(events, std::vector<std::string>{"button"});
  events.clear();
  EXPECT_TRUE(tapAt(200, 200));
  EXPECT_EQ(events, std::vector<std::string>{"root"});
}

TEST_F(Touches, APushedScreenLoadsAndAppearsAsTheCoveredOneDisappears) {
  rt::Class screen = sim::ClassBuilder("PushedScreen", "UIViewController")
                         .method("viewDidLoad", record)
                         .method("viewWillAppear:", recordAnimated)
                         .method("viewDidAppear:", recordAnimated)
                         .method("viewWillDisappear:", recordAnimated)
                         .method("viewDidDisappear:", recordAnimated)
                         .build();
  Id nav = rt::send<Id>(host.tabs(), "selectedViewController");
  process->runGuarded([&] {
    rt::send<void>(
        nav, "pushViewController:animated:", sim::autorelease(rt::send<Id>(screen, "new")), true);
    events.clear();
    rt::send<void>(
        nav, "pushViewController:animated:", sim::autorelease(rt::send<Id>(screen, "new")), true);
  });
  EXPECT_EQ(events, (std::vector<std::string>{
                        "PushedScreen viewDidLoad",
                        "PushedScreen viewWillDisappear:", "PushedScreen viewWillAppear:",
                        "PushedScreen viewDidDisappear:", "PushedScreen viewDidAppear:"}));
  // A stack not yet on screen loads nothing.
  events.clear();
  process->runGuarded([&] {
    Id offscreen = sim::autorelease(rt::send<Id>(rt::getClass("UINavigationController"), "new"));
    rt::send<void>(offscreen,
                   "pushViewController:animated:", sim::autorelease(rt::send<Id>(screen, "new")),
                   true);
  });
  EXPECT_TRUE(events.empty());
}

}  // namespace
