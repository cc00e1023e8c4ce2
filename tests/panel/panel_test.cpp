// The panel's table in both modes, what each row does and saves, swipe to
// delete, opening with its authentication and closing in both modes.
#include <gtest/gtest.h>

#include "panel/panel_world.hpp"
#include "rt/exception.hpp"
#include "rt/ownership.hpp"
#include "sim/process.hpp"
#include "ui/tables.hpp"

namespace {

using qbtest::PanelWorld;

class Panel : public PanelWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice");
    addFriend("bob", "Bob", "老板");
    host.model.sessions = {"alice", "bob"};
    launchWithLibrary();
    wait(2);
  }
  std::vector<long> rowCounts(rt::Id p) {
    std::vector<long> out;
    for (const auto& s : shown(p)) out.push_back(long(s.rows.size()));
    return out;
  }
};

TEST_F(Panel, ManualModeShowsEverySectionWithItsRows) {
  rt::Id p = openPanel();
  auto sections = shown(p);
  ASSERT_EQ(sections.size(), 8u);
  EXPECT_EQ(rowCounts(p), (std::vector<long>{2, 2, 1, 3, 2, 3, 2, 1}));
  EXPECT_EQ(sections[1].header, "唤醒方式");
  EXPECT_EQ(sections[2].rows[0].title, "轻晃隐藏");
  EXPECT_EQ(sections[2].rows[0].state, "on");
  EXPECT_EQ(sections[0].rows[0].state, "checked");
  EXPECT_EQ(sections[3].rows[2].state, "checked");  // 不通知 by default
  EXPECT_EQ(sections[7].rows[0].height, 54);
}

TEST_F(Panel, ScheduleModeReshapesSectionsOneAndTwo) {
  rt::Id p = openPanel();
  ASSERT_TRUE(tap(p, 0, 1));
  EXPECT_TRUE(config().usesScheduleVisibility());
  auto sections = shown(p);
  EXPECT_EQ(sections[1].header, "");
  EXPECT_EQ(sections[1].footer, "");
  EXPECT_TRUE(sections[1].rows.empty());
  EXPECT_EQ(sections[2].header, "每日时段");
  ASSERT_EQ(sections[2].rows.size(), 2u);  // one window and the add row
  EXPECT_EQ(sections[2].rows[0].title, "时段 1");
  EXPECT_EQ(sections[2].rows[1].title, "添加时段");
  std::string msg;
  ASSERT_TRUE(config().addDailyWindowWithStart(1320, 360, 1, &msg)) << msg;
  ASSERT_TRUE(config().addDailyWindowWithStart(360, 400, 1, &msg)) << msg;
  // Changed behind the table's back: it shows what its cells were made with until reloaded.
  EXPECT_EQ(shown(p)[2].rows.size(), 2u);
  process->runGuarded([&] { rt::send<void>(p, "reload"); });
  sections = shown(p);
  ASSERT_EQ(sections[2].rows.size(), 3u);  // three windows: no add row
  EXPECT_EQ(sections[2].rows[2].title, "时段 3");
}

TEST_F(Panel, OnlyWindowsBeyondTheLastOneAndSecretsCanBeSwiped) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  ASSERT_TRUE(tap(p, 0, 1));
  EXPECT_FALSE(swipe(p, 2, 0));  // the only window
  EXPECT_FALSE(swipe(p, 2, 1));  // the add row
  EXPECT_FALSE(swipe(p, 0, 0));
  EXPECT_FALSE(swipe(p, 7, 0));
  std::string msg;
  ASSERT_TRUE(config().addDailyWindowWithStart(1320, 360, 1, &msg)) << msg;
  process->runGuarded([&] { panel::QBPanelController::reload(p); });
  EXPECT_FALSE(swipe(p, 2, 2));  // still the add row
  EXPECT_TRUE(swipe(p, 2, 0));
  EXPECT_EQ(config().normalizedDailyWindows().size(), 1u);
  // Deleting the secret row removes it from the set and from the table in step.
  EXPECT_TRUE(swipe(p, 7, 1));
  EXPECT_EQ(config().secretCount(), 0);
  EXPECT_EQ(shown(p)[7].rows.size(), 1u);
  EXPECT_FALSE(process->crashed());
}

// A secret added behind the open panel's back leaves the table one row
// short; deleting a row then must not throw UIKit's inconsistency into the host.
TEST_F(Panel, DeletingASecretAfterTheListChangedBehindTheTableKeepsTheHostAlive) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  ASSERT_TRUE(tap(p, 0, 0));
  // The user scrolls down to the secrets: their cells are made now, with bob.
  ASSERT_EQ(shown(p)[7].rows[1].detail, "bob");
  config().addSecretUser("carol");
  config().addSecretUser("dave");
  EXPECT_EQ(shown(p)[7].rows.size(), 2u);
  EXPECT_EQ(shown(p)[7].rows[1].detail, "bob");
  EXPECT_TRUE(swipe(p, 7, 1));
  EXPECT_FALSE(process->crashed()) << process->crashReason();
  EXPECT_FALSE(config().isSecretUser("bob")) << "the row the user swiped showed bob";
  EXPECT_EQ(config().secretCount(), 2);
  auto rows = shown(p)[7].rows;
  ASSERT_EQ(rows.size(), 3u);
  std::string first = rows[1].detail;
  EXPECT_TRUE(swipe(p, 7, 1));  // the table is in step again
  EXPECT_FALSE(config().isSecretUser(first));
  EXPECT_EQ(config().secretCount(), 1);
  EXPECT_EQ(shown(p)[7].rows.size(), 2u);
  EXPECT_FALSE(process->crashed()) << process->crashReason();
}

TEST_F(Panel, ARowShowsWhatItWasMadeWithUntilItsSectionIsReloaded) {
  rt::Id p = openPanel();
  EXPECT_EQ(shown(p)[3].rows[2].state, "checked");  // 不通知, the default
  config().setSecretNotifyMode(2);                  // behind the table's back
  EXPECT_EQ(shown(p)[3].rows[2].state, "checked");
  EXPECT_EQ(shown(p)[3].rows[0].state, "");
  tap(p, 6, 1);  // another section's reload leaves this one as it was
  EXPECT_EQ(shown(p)[6].rows[1].state, "checked");
  EXPECT_EQ(shown(p)[3].rows[2].state, "checked");
  tap(p, 3, 1);
  EXPECT_EQ(shown(p)[3].rows[1].state, "checked");
  EXPECT_EQ(shown(p)[3].rows[2].state, "");
}

TEST_F(Panel, AOneSectionUpdateWithAnotherSectionChangedRaisesAndThePanelReloadsAll) {
  rt::Id p = openPanel();
  ASSERT_EQ(shown(p)[7].rows.size(), 1u);
  config().addSecretUser("bob");  // the list changes outside the panel
  rt::Id table = sim::tableOf(p);
  EXPECT_THROW(ui::reloadSection(table, 3, ui::RowAnimation::None), rt::Exception);
  tap(p, 5, 1);  // the panel's own one-section update shows the whole table anew
  EXPECT_FALSE(process->crashed()) << process->crashReason();
  auto rows = shown(p);
  EXPECT_EQ(rows[7].rows.size(), 2u);
  EXPECT_EQ(rows[5].rows[1].state, "checked");
}

TEST_F(Panel, NotifyRowsSetTheModeAndTheBackgroundFlagAndSaveAtOnce) {
  rt::Id p = openPanel();
  tap(p, 3, 0);
  EXPECT_EQ(config().secretNotifyMode(), 2);
  EXPECT_TRUE(config().backgroundNotifyEnabled());
  tap(p, 3, 1);
  EXPECT_EQ(config().secretNotifyMode(), 1);
  EXPECT_TRUE(config().backgroundNotifyEnabled());
  EXPECT_EQ(shown(p)[3].rows[1].state, "checked");
  EXPECT_EQ(shown(p)[3].rows[0].state, "");
  tap(p, 3, 2);
  tap(p, 6, 1);
  tap(p, 5, 1);
  coldStart();
  EXPECT_EQ(config().secretNotifyMode(), 0);
  EXPECT_FALSE(config().backgroundNotifyEnabled());
  EXPECT_EQ(config().revealAuthMode(), 1);
  EXPECT_EQ(config().panelAuthMode(), 1);
}

TEST_F(Panel, SwitchesSaveAtOnce) {
  rt::Id p = openPanel();
  process->runGuarded([&] {
    sim::flipSwitch(sim::tableOf(p), 1, 0, false);
    sim::flipSwitch(sim::tableOf(p), 1, 1, false);
    sim::flipSwitch(sim::tableOf(p), 2, 0, false);
    sim::flipSwitch(sim::tableOf(p), 4, 0, true);
    sim::flipSwitch(sim::tableOf(p), 4, 1, true);
  });
  coldStart();
  EXPECT_FALSE(config().shakeShowEnabled());
  EXPECT_FALSE(config().longPressUnlockEnabled());
  EXPECT_FALSE(config().shakeHideEnabled());
  EXPECT_TRUE(config().voipVoiceNotifyEnabled());
  EXPECT_TRUE(config().voipVideoNotifyEnabled());
}

TEST_F(Panel, AShortPasswordIsDroppedSilentlyAndFourCharactersAreSaved) {
  rt::Id p = openPanel();
  tap(p, 5, 2);
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->title, "设置新口令");
  EXPECT_TRUE(alert()->fieldSpecs.at(0).secure);
  EXPECT_EQ(alert()->fieldSpecs.at(0).placeholder, "至少 4 位");
  type("123");
  press("确定");
  EXPECT_EQ(config().password(), core::kDefaultPassword);
  EXPECT_EQ(top(), p);  // no message
  tap(p, 5, 2);
  type("1234");
  press("确定");
  coldStart();
  EXPECT_EQ(config().password(), "1234");
}

TEST_F(Panel, APasswordIsAsLongAsNSStringCountsIt) {
  rt::Id p = openPanel();
  auto enter = [&](const std::string& text) {
    tap(p, 5, 2);
    type(text);
    press("确定");
  };
  enter("密码");  // two characters, six bytes
  EXPECT_EQ(config().password(), core::kDefaultPassword);
  enter("\U0001F600\U0001F600");  // two emoji, four UTF-16 units
  EXPECT_EQ(config().password(), "\U0001F600\U0001F600");
  enter("口令密码");
  EXPECT_EQ(config().password(), "口令密码");
}

TEST_F(Panel, OpeningRevealsAndHoldsBothFlagsUntilDone) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  EXPECT_TRUE(config().unlocked());
  EXPECT_TRUE(config().suppressAutoLock());
  EXPECT_TRUE(config().suppressSessionApply());
  EXPECT_EQ(sim::findExtra<sim::ScreenState>(rt::send<rt::Id>(p, "navigationController"))
                ->modalPresentationStyle,
            1);
  process->runGuarded([&] { sim::pressLeftBarButton(p); });
  wait(1);
  EXPECT_FALSE(config().unlocked());
  EXPECT_FALSE(config().suppressAutoLock());
  EXPECT_FALSE(config().suppressSessionApply());
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"alice"}));
}

TEST_F(Panel, DraggingTheSheetAwayClosesItAsDoneDoesOnceTheSheetHasGone) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  rt::Id nav = rt::send<rt::Id>(p, "navigationController");
  process->runGuarded([&] { ASSERT_TRUE(sim::dragAway(nav)); });
  EXPECT_NE(rt::className(top()), "QBPanelController");
  EXPECT_TRUE(config().unlocked()) << "the delegate hears of it when the sheet has gone";
  wait(1);
  EXPECT_FALSE(config().unlocked());
  EXPECT_FALSE(config().suppressAutoLock());
  EXPECT_FALSE(config().suppressSessionApply());
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"alice"}));
}

TEST_F(Panel, CodeThatDismissesTheSheetIsNoDrag) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  process->runGuarded([&] { sim::dismissPresented(rt::send<rt::Id>(p, "navigationController")); });
  wait(1);
  EXPECT_TRUE(config().unlocked());
}

TEST_F(Panel, LeavingTheAppTakesTheSheetAndTheDialogAboveItAtOnce) {
  config().addSecretUser("bob");
  rt::Id p = openPanel();
  ASSERT_TRUE(tap(p, 5, 2));  // the new-password dialog, presented by the panel
  rt::Weak dialog(top());
  rt::Weak panel(p);
  ASSERT_TRUE(rt::isKindOf(dialog.lock().get(), "UIAlertController"));
  ASSERT_TRUE(process->enterBackground());
  EXPECT_FALSE(config().unlocked()) << "before the system's picture, not after an animation";
  EXPECT_EQ(host.lastSnapshot().screen, "main") << "neither the panel nor its dialog";
  EXPECT_FALSE(dialog.lock()) << "dismissed, and freed with its turn";
  EXPECT_FALSE(panel.lock());
  ASSERT_TRUE(process->enterForeground());
  wait(1);
  EXPECT_FALSE(config().suppressAutoLock());
  EXPECT_FALSE(config().suppressSessionApply());
  EXPECT_EQ(rt::className(top()), "NewMainFrameViewController");
}

// Face ID can answer after the app has left: the flow is over by then, and
// its pass must not leave the secrets shown for the user's return.
TEST_F(Panel, AFaceIdPassArrivingAfterLeavingLeavesTheSecretsHidden) {
  config().addSecretUser("bob");
  config().setPanelAuthMode(1);
  process->runGuarded([] { panel::QBPanelController::presentFrom(nullptr); });
  process->runDue();
  ASSERT_TRUE(process->platform().biometricReply);
  auto reply = process->platform().biometricReply;
  process->platform().biometricReply = nullptr;
  ASSERT_TRUE(process->enterBackground());
  process->runGuarded([&] { reply(true); });
  process->runDue();
  ASSERT_TRUE(process->enterForeground());
  wait(2);
  EXPECT_EQ(host.mainListShown(), (std::vector<std::string>{"alice"}));
  EXPECT_EQ(rt::className(top()), "NewMainFrameViewController") << "and no panel";
  EXPECT_FALSE(config().unlocked());
}

TEST_F(Panel, ClosingInScheduleModeLetsTheScheduleDecide) {
  config().addSecretUser("bob");
  device.setLocalTime(23, 0);
  rt::Id p = openPanel();
  tap(p, 0, 1);  // the default window shows 08:00-22:00: 23:00 is outside, so hidden
  EXPECT_TRUE(config().unlocked());  // the open panel keeps them shown
  process->runGuarded([&] { sim::pressLeftBarButton(p); });
  wait(1);
  EXPECT_FALSE(config().unlocked());
  EXPECT_FALSE(config().suppressSessionApply());
}

TEST_F(Panel, AFailedOrCancelledAuthenticationClearsBothFlags) {
  process->runGuarded([] { panel::QBPanelController::presentFrom(nullptr); });
  wait(0.01);
  type("0000");
  press("确定");
  wait(1);
  EXPECT_FALSE(config().suppressAutoLock());
  EXPECT_FALSE(config().suppressSessionApply());
  EXPECT_NE(rt::className(top()), "QBPanelController");
  process->runGuarded([] { panel::QBPanelController::presentFrom(nullptr); });
  wait(0.01);
  press("取消");
  wait(1);
  EXPECT_FALSE(config().suppressAutoLock());
  EXPECT_FALSE(config().suppressSessionApply());
}

TEST_F(Panel, ABusyTargetGetsThePanelOnTopAfterTheRetry) {
  // What presentFrom: hands over: the top of the root's presentations, here
  // still presenting something (an alert on its way out, another sheet).
  rt::Id root = host.tabs();
  rt::Id busy = rt::send<rt::Id>(rt::getClass("UIViewController"), "new");
  sim::present(root, busy);
  process->runGuarded([&] { panel::QBPanelController::presentPanelOn(root); });
  EXPECT_EQ(top(), busy);
  wait(0.44);
  EXPECT_EQ(top(), busy);
  wait(0.02);
  EXPECT_EQ(rt::className(top()), "QBPanelController");
  EXPECT_EQ(sim::controllerState(busy)->presented, rt::send<rt::Id>(top(), "navigationController"));
}

}  // namespace
