// The simulated UIKit's presentations, as strict as UIKit's: a dismissal takes
// the whole stack above, a controller in no window presents nothing, and only
// a user's drag of a sheet tells the presentation delegate.
#include <gtest/gtest.h>

#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"
#include "ui/alerts.hpp"
#include "ui/navigation.hpp"

namespace {

class Presentation : public qbtest::HostWorld {
 protected:
  void SetUp() override { start(); }
  rt::Id make(const char* cls) { return rt::send<rt::Id>(rt::getClass(cls), "new"); }
  rt::Id sheetOn(rt::Id presenter, rt::Id root) {
    rt::Id nav = rt::send<rt::Id>(rt::send<rt::Id>(rt::getClass("UINavigationController"), "alloc"),
                                  "initWithRootViewController:", root);
    ui::presentPageSheet(presenter, nav, ui::SheetSpec{}, true);
    return nav;
  }
};

TEST_F(Presentation, DismissingASheetTakesWhatItsScreensPresentWithIt) {
  rt::Id inner = make("UIViewController");
  rt::Id nav = sheetOn(host.tabs(), inner);
  rt::Id alert = ui::makeAlert("t", "m");
  bool gone = false;
  ui::onDismissedWithoutAction(alert, [&] { gone = true; });
  ASSERT_TRUE(ui::present(inner, alert, true));
  ASSERT_EQ(sim::topController(), alert);
  sim::dismissPresented(nav);
  EXPECT_EQ(rt::send<rt::Id>(alert, "presentingViewController"), nullptr);
  EXPECT_EQ(rt::send<rt::Id>(inner, "presentedViewController"), nullptr);
  EXPECT_TRUE(gone) << "the alert left without any of its buttons";
}

TEST_F(Presentation, AControllerInNoWindowPresentsNothing) {
  rt::Id inner = make("UIViewController");
  rt::Id nav = sheetOn(host.tabs(), inner);
  sim::dismissPresented(nav);
  EXPECT_FALSE(ui::present(inner, ui::makeAlert("t", "m"), true));
  EXPECT_EQ(rt::send<rt::Id>(inner, "presentedViewController"), nullptr);
  EXPECT_FALSE(ui::present(make("UIViewController"), ui::makeAlert("t", "m"), true));
}

TEST_F(Presentation, OnlyADraggedSheetTellsItsDelegateAndOnlyOnceItHasGone) {
  int heard = 0;
  rt::Id nav = sheetOn(host.tabs(), make("UIViewController"));
  ui::onDraggedAway(nav, [&] { ++heard; });
  ASSERT_TRUE(sim::dragAway(nav));
  EXPECT_EQ(rt::send<rt::Id>(host.tabs(), "presentedViewController"), nullptr);
  EXPECT_EQ(heard, 0);
  wait(0.3);
  EXPECT_EQ(heard, 1);
  EXPECT_FALSE(sim::dragAway(nav)) << "gone already";

  rt::Id again = sheetOn(host.tabs(), make("UIViewController"));
  ui::onDraggedAway(again, [&] { ++heard; });
  ui::dismiss(again, true, nullptr);
  wait(1);
  EXPECT_EQ(heard, 1) << "code that dismisses is no drag";

  rt::Id full = make("UIViewController");
  ASSERT_TRUE(ui::present(host.tabs(), full, true));
  EXPECT_FALSE(sim::dragAway(full)) << "a full-screen presentation has nothing to drag";
}

}  // namespace
