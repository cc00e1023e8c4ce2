// The About page's hidden entry: the taps that open its check and their gap, the
// three targets and their geometric limits, the label walk, and attaching
// each recognizer once.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "sim/hostapp/about_page.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"
#include "triggers/entry_hooks.hpp"

namespace {

using triggers::QBEntryHooks;

constexpr int kTapsNeeded = 5;

class Entry : public qbtest::HostWorld {
 protected:
  rt::Id page = nullptr;

  void SetUp() override {
    addFriend("a");
    launchWithLibrary();
    wait(2);
  }
  void openAbout() {
    process->runGuarded([&] { page = hostapp::openAbout(host); });
    wait(0.5);  // the labels come at 0.3 s, the late attach at 0.4 s
  }
  rt::Id view() { return rt::send<rt::Id>(page, "view"); }
  rt::Id bar() {
    return rt::send<rt::Id>(rt::send<rt::Id>(page, "navigationController"), "navigationBar");
  }
  rt::Id label() { return hostapp::aboutVersionLabel(page); }
  bool tapVersion() {
    rt::CGRect f = sim::viewState(label())->frame;
    rt::CGPoint p{f.origin.x + 10, f.origin.y + 10};
    for (rt::Id v = sim::viewState(label())->superview; v != view();
         v = sim::viewState(v)->superview) {
      p.x += sim::viewState(v)->frame.origin.x;
      p.y += sim::viewState(v)->frame.origin.y;
    }
    return sim::tapAt(view(), p);
  }
  void tapNav(double dx) { tapNavOn(bar(), dx); }
  void tapNavOn(rt::Id navBar, double dx) {
    sim::tapAt(navBar, {sim::viewState(navBar)->frame.size.width / 2 + dx, 20});
  }
  void tapPage(double y) { sim::tapAt(view(), {195, y}); }
  bool askedForPanel() {
    rt::Id top = sim::topController();
    return top && sim::alertState(top) && sim::alertState(top)->title == "验证身份";
  }
  // Taps the version label until the check comes up; how many it took (0: never).
  int tapsToOpen() {
    for (int n = 1; n <= kTapsNeeded; ++n) {
      tapVersion();
      wait(0.01);
      if (askedForPanel()) return n;
    }
    return 0;
  }
  // Answers the check with 取消, as a person backing out would.
  void cancelCheck() {
    process->runGuarded([&] { sim::pressAlertAction(sim::topController(), "取消"); });
    wait(0.5);
  }
  long recognizers(rt::Id v) {
    long n = 0;
    for (rt::Id g : sim::viewState(v)->gestureRecognizers)
      n += rt::isKindOf(g, "UITapGestureRecognizer");
    return n;
  }
};

TEST_F(Entry, FiveTapsASecondApartOpenOnTheFifthAndASixthStartsAgain) {
  openAbout();
  for (int i = 1; i <= 4; ++i) {
    ASSERT_TRUE(tapVersion());
    wait(1.0);
    EXPECT_FALSE(askedForPanel()) << "after tap " << i;
  }
  tapVersion();
  wait(0.01);
  EXPECT_TRUE(askedForPanel());
  EXPECT_EQ(process->platform().haptics.back(), "impact 0");  // light
  cancelCheck();
  EXPECT_EQ(tapsToOpen(), kTapsNeeded) << "the series starts again after it opened";
}

TEST_F(Entry, AGapOverTheLimitRestartsTheSeriesButTheGapIsBetweenTaps) {
  openAbout();
  for (int i = 0; i < 4; ++i) tapVersion(), wait(0.1);
  wait(2);
  tapVersion();
  wait(0.01);
  EXPECT_FALSE(askedForPanel());
  // 1.2 s apart is within the gap every time: a series of 6 s still opens.
  for (int i = 0; i < 4; ++i) wait(1.2), tapPage(100);
  wait(0.01);
  EXPECT_TRUE(askedForPanel());
}

TEST_F(Entry, GeometricLimitsOfTheBarAndThePage) {
  openAbout();
  tapNav(150);
  tapNav(-150);
  tapPage(300);
  tapNav(90);
  tapNav(-90);
  tapPage(250);
  tapPage(280);
  EXPECT_FALSE(askedForPanel());
  EXPECT_EQ(tapsToOpen(), 1)
      << "the four taps inside the limits counted, the three outside did not";
}

TEST_F(Entry, AVersionLabelTapCountsOnceThoughThePageRecognizerLiesUnderIt) {
  openAbout();
  // The label lies below the page's top band: only its own recognizer may count it.
  EXPECT_EQ(recognizers(label()), 1);
  for (int i = 0; i < 3; ++i) tapVersion();
  EXPECT_TRUE(rt::send<bool>(label(), "isUserInteractionEnabled"));
  EXPECT_EQ(tapsToOpen(), 2);
}

TEST_F(Entry, LabelsAreMatchedByHintWordsOrADottedNumber) {
  EXPECT_TRUE(QBEntryHooks::isVersionText("Build 8.0.50 (x)", "8.0.50"));
  EXPECT_TRUE(QBEntryHooks::isVersionText("当前版本", ""));
  EXPECT_TRUE(QBEntryHooks::isVersionText("VeRsIoN", ""));
  EXPECT_TRUE(QBEntryHooks::isVersionText("v12.3", ""));
  EXPECT_TRUE(QBEntryHooks::isVersionText("release r42", "r42"));
  EXPECT_FALSE(QBEntryHooks::isVersionText("关于 About", "8.0.50"));
  EXPECT_FALSE(QBEntryHooks::isVersionText("2011-2026", ""));
  EXPECT_FALSE(QBEntryHooks::isVersionText("12", ""));
  EXPECT_FALSE(QBEntryHooks::isVersionText("step 3. or .5", ""));
  EXPECT_FALSE(QBEntryHooks::isVersionText("", ""));
}

TEST_F(Entry, TheWalkStopsBelowDepthTen) {
  openAbout();
  auto chain = [&](int depth) {
    rt::Id parent = view();
    for (int i = 1; i < depth; ++i) {
      rt::Id v = rt::send<rt::Id>(rt::getClass("UIView"), "new");
      rt::send<void>(parent, "addSubview:", v);
      parent = v;
    }
    rt::Id l = rt::send<rt::Id>(rt::getClass("UILabel"), "new");
    rt::send<void>(l, "setText:", rt::str("Version"));
    rt::send<void>(parent, "addSubview:", l);
    return l;
  };
  rt::Id at10 = chain(10), at11 = chain(11);
  QBEntryHooks::attachAboutEntryGestures(page);
  EXPECT_EQ(recognizers(at10), 1);
  EXPECT_EQ(recognizers(at11), 0);
}

TEST_F(Entry, RepeatedAppearancesAttachNothingTwice) {
  openAbout();
  for (int i = 0; i < 3; ++i) {
    process->runGuarded([&] { sim::appear(page); });
    wait(1);
  }
  EXPECT_EQ(recognizers(bar()), 1);
  EXPECT_EQ(recognizers(view()), 1);
  EXPECT_EQ(recognizers(label()), 1);
}

TEST_F(Entry, APageTapAfterTheLabelsCameStillCountsWithoutTheLateAttach) {
  // viewDidAppear attaches at once; the labels are there only after 0.3 s.
  process->runGuarded([&] { page = hostapp::openAbout(host); });
  EXPECT_EQ(label(), nullptr);
  tapPage(100);
  wait(0.45);
  EXPECT_EQ(recognizers(label()), 1);
  EXPECT_EQ(tapsToOpen(), 4) << "the early tap counted";
}

class EntryMissing : public qbtest::HostWorld {};

TEST_F(EntryMissing, AHostWithoutTheAboutPageGetsNoHooks) {
  host.build.lackingClasses.insert("SettingAboutMMViewController");
  launchWithLibrary();
  wait(1);
  EXPECT_EQ(countLog("[QB] SettingAboutMMViewController missing"), 1);
  EXPECT_EQ(countLog("[QB] entry = "), 0);
  EXPECT_FALSE(
      rt::instancesRespondTo(rt::getClass("UIViewController"), rt::sel("qb_about_viewDidLoad")));
}

TEST_F(Entry, BackingOutBeforeTheLateAttachesFreesThePageAndLeavesTheHostWorking) {
  process->runGuarded([&] { page = hostapp::openAbout(host); });
  rt::Weak weak(page);
  wait(0.2);
  process->runGuarded([&] { host.popToRoot(); });
  EXPECT_FALSE(weak.lock()) << "the navigation controller was its last owner";
  wait(2);
  EXPECT_FALSE(process->crashed()) << process->crashReason();
  openAbout();  // a new page gets its entry as before
  EXPECT_EQ(recognizers(view()), 1);
}

// The bar belongs to the whole stack: once About has gone, five taps on it
// under another screen must not start the panel flow.
TEST_F(Entry, TheBarLosesItsRecognizerWhenThePageGoesAndGetsOneBackWithTheNextPage) {
  openAbout();
  rt::Id navBar = bar();
  rt::Weak weak(page);
  EXPECT_EQ(recognizers(navBar), 1);
  process->runGuarded([&] { host.popToRoot(); });
  ASSERT_FALSE(weak.lock());
  EXPECT_EQ(recognizers(navBar), 0);
  for (int i = 0; i < 5; ++i) process->runGuarded([&] { tapNavOn(navBar, 0); }), wait(0.2);
  EXPECT_FALSE(askedForPanel());
  openAbout();
  EXPECT_EQ(bar(), navBar);
  for (int i = 0; i < 2; ++i) process->runGuarded([&] { sim::appear(page); }), wait(1);
  EXPECT_EQ(recognizers(navBar), 1);
  for (int i = 0; i < 4; ++i) process->runGuarded([&] { tapNav(0); });
  wait(0.01);
  EXPECT_FALSE(askedForPanel()) << "the tap on the bar without its page did not count";
  process->runGuarded([&] { tapNav(0); });
  wait(0.01);
  EXPECT_TRUE(askedForPanel()) << "the bar's taps count for the page now on it";
}

TEST_F(Entry, AScreenPushedOverThePageTakesTheBarEvenBeforeTheLateAttaches) {
  process->runGuarded([&] { page = hostapp::openAbout(host); });
  rt::Id nav = rt::send<rt::Id>(page, "navigationController");
  rt::Id navBar = bar();
  wait(0.1);  // the late attaches (0.4 s, 0.6 s) come after the push
  rt::Id other = rt::send<rt::Id>(rt::getClass("UIViewController"), "new");
  process->runGuarded([&] {
    rt::send<void>(nav, "pushViewController:animated:", other, true);
    sim::disappear(page);
    sim::appear(other);
  });
  wait(1);
  EXPECT_EQ(recognizers(navBar), 0) << "a late attach found the page off screen";
  for (int i = 0; i < 5; ++i) process->runGuarded([&] { tapNavOn(navBar, 0); }), wait(0.2);
  EXPECT_FALSE(askedForPanel());
  process->runGuarded([&] {
    rt::send<rt::Id>(nav, "popViewControllerAnimated:", true);
    sim::disappear(other);
    sim::appear(page);
  });
  EXPECT_EQ(recognizers(navBar), 1);
  for (int i = 0; i < 5; ++i) process->runGuarded([&] { tapNav(0); });
  wait(0.01);
  EXPECT_TRUE(askedForPanel()) << "the bar counts again for the page back on screen";
}

TEST_F(Entry, APageFreedWithoutDisappearingTakesItsRecognizerWithIt) {
  openAbout();
  rt::Id nav = rt::send<rt::Id>(page, "navigationController");
  rt::Id navBar = bar();
  rt::Weak weak(page);
  process->runGuarded([&] {
    rt::Id root = rt::send<rt::Id>(rt::send<rt::Id>(nav, "viewControllers"), "firstObject");
    rt::send<void>(nav, "setViewControllers:", rt::array({root}));
  });
  wait(0.1);
  ASSERT_FALSE(weak.lock());
  EXPECT_EQ(recognizers(navBar), 0);
}

TEST_F(Entry, AFailureInTheLifecycleBodiesIsLoggedAndTheHostGoesOn) {
  rt::Method bar =
      rt::getInstanceMethod(rt::getClass("UINavigationController"), rt::sel("navigationBar"));
  process->runtime().makeRaising(rt::methodImplementation(bar), "no bar");
  openAbout();
  wait(1);
  EXPECT_GE(countLog("[QB] about viewDidAppear ex: "), 1);
  EXPECT_GE(countLog("[QB] about attach ex: "), 1);
  EXPECT_EQ(sim::topController(), page);
}

TEST_F(Entry, ASecondInstallChangesNothing) {
  QBEntryHooks::install();
  openAbout();
  EXPECT_EQ(recognizers(view()), 1);
  EXPECT_EQ(tapsToOpen(), kTapsNeeded);
}

}  // namespace
