// The contact picker (matching, header, row details, staying open after a
// pick, its sources) and the window editor (the three dialogs, their delay,
// cancelling, refusals).
#include <gtest/gtest.h>

#include "panel/contact_pick_controller.hpp"
#include "panel/panel_world.hpp"

namespace {

using panel::PickItem;
using panel::QBContactPickController;
using qbtest::PanelWorld;

TEST(PickFilter, MatchesAnyFieldIgnoringCaseAndBlanks) {
  std::vector<PickItem> items = {
      {"wxid_tom", "Boss", "Tom", "xabcx"}, {"zed_007", "Zed", "", ""}, {"amy", "Amy", "", ""}};
  EXPECT_EQ(QBContactPickController::filter(items, "   \n").size(), 3u);
  // Blanks from other keyboards: the full-width space, the no-break space.
  EXPECT_EQ(QBContactPickController::filter(items, "\u3000").size(), 3u);
  EXPECT_EQ(QBContactPickController::filter(items, "\u00A0 \u3000").size(), 3u);
  EXPECT_EQ(QBContactPickController::filter(items, "\u3000abc\u2029").size(), 1u);
  auto abc = QBContactPickController::filter(items, " ABC ");
  ASSERT_EQ(abc.size(), 1u);
  EXPECT_EQ(abc[0].username, "wxid_tom");
  auto byId = QBContactPickController::filter(items, "D_00");
  ASSERT_EQ(byId.size(), 1u);
  EXPECT_EQ(byId[0].username, "zed_007");
  auto ordered = QBContactPickController::filter(items, "m");  // Tom, Amy: in their order
  ASSERT_EQ(ordered.size(), 2u);
  EXPECT_EQ(ordered[0].username, "wxid_tom");
  EXPECT_EQ(ordered[1].username, "amy");
  EXPECT_TRUE(QBContactPickController::filter(items, "q").empty());
}

TEST(PickRows, HeaderAndDetailRules) {
  EXPECT_EQ(QBContactPickController::headerFor(12), "通讯录 · 12 人");
  EXPECT_EQ(QBContactPickController::headerFor(0), "未找到联系人");
  EXPECT_EQ(QBContactPickController::detailFor("Tom", "Tom", "wxid_tom"), "wxid_tom");
  EXPECT_EQ(QBContactPickController::detailFor("Boss", "", "wxid_tom"), "wxid_tom");
  EXPECT_EQ(QBContactPickController::detailFor("Boss", "Tom", "wxid_tom"), "Tom · wxid_tom");
}

class Picker : public PanelWorld {
 protected:
  void start(bool withContacts) {
    addFriend("alice", "Alice");
    addFriend("bob", "Bob", "老板");
    host.model.sessions = {"alice", "bob"};
    if (!withContacts) host.build.lackingClasses.insert("CContactMgr");
    launchWithLibrary();
    wait(2);
  }
};

TEST_F(Picker, APickAddsTheSecretMarksTheRowAndStaysOpen) {
  start(true);
  rt::Id p = openPanel();
  tap(p, 7, 0);
  rt::Id picker = top();
  ASSERT_EQ(rt::className(picker), "QBContactPickController");
  auto rows = shown(picker);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0].header, "通讯录 · 2 人");
  process->runGuarded([&] { sim::typeSearch(picker, "老"); });
  rows = shown(picker);
  ASSERT_EQ(rows[0].rows.size(), 1u);
  EXPECT_EQ(rows[0].rows[0].title, "老板");
  EXPECT_EQ(rows[0].rows[0].detail, "Bob · bob");
  EXPECT_EQ(rows[0].rows[0].height, 64);
  tap(picker, 0, 0);
  EXPECT_TRUE(config().isSecretUser("bob"));
  EXPECT_EQ(top(), picker);
  rows = shown(picker);
  EXPECT_EQ(rows[0].rows[0].detail, "已在密友名单");
  EXPECT_EQ(rows[0].rows[0].state, "checked");
  process->runGuarded([&] { sim::typeSearch(picker, "nobody"); });
  EXPECT_EQ(shown(picker)[0].header, "未找到联系人");
  process->runGuarded([&] { sim::pressLeftBarButton(picker); });
  EXPECT_EQ(top(), p);
  auto panelRows = shown(p);
  ASSERT_EQ(panelRows[7].rows.size(), 2u);
  EXPECT_EQ(panelRows[7].rows[1].detail, "bob");
  EXPECT_EQ(panelRows[7].rows[1].height, 68);
  coldStart();
  EXPECT_TRUE(config().isSecretUser("bob"));
}

TEST_F(Picker, WithoutAContactDirectoryTheSessionListIsOffered) {
  start(false);
  rt::Id p = openPanel();
  tap(p, 7, 0);
  ASSERT_EQ(rt::className(top()), "QBContactPickController");
  EXPECT_EQ(shown(top())[0].rows.size(), 2u);
}

TEST_F(Picker, NothingToOfferShowsATip) {
  host.build.lackingClasses.insert("CContactMgr");
  launchWithLibrary();
  wait(2);
  rt::Id p = openPanel();
  tap(p, 7, 0);
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->message, "未读到通讯录联系人");
  EXPECT_EQ(rt::send<rt::Id>(top(), "title"), nullptr) << "a tip has no title, not an empty one";
  press("好");
  EXPECT_EQ(top(), p);
}

class Editor : public PanelWorld {
 protected:
  rt::Id p = nullptr;
  void SetUp() override {
    launchWithLibrary();
    wait(2);
    p = openPanel();
    tap(p, 0, 1);  // schedule mode: one window 08:00-22:00 show
  }
  core::DailyWindows windows() { return config().normalizedDailyWindows(); }
};

TEST_F(Editor, AddingAcrossMidnightTakesThreeDialogsEachAfterTheDelay) {
  ASSERT_TRUE(tap(p, 2, 1));
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->title, "① 选择开始时间");
  long h = 0, m = 0;
  ui::pickerTime(sim::alertTimePicker(top()), h, m);
  EXPECT_EQ(h * 60 + m, 720);  // a new window is proposed at 12:00
  setTime(22, 0);
  press("确定");
  wait(0.39);
  EXPECT_EQ(alert(), nullptr);
  wait(0.02);
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->title, "② 选择结束时间");
  ui::pickerTime(sim::alertTimePicker(top()), h, m);
  EXPECT_EQ(h * 60 + m, 840);
  setTime(6, 0);
  press("确定");
  wait(0.4);
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->title, "③ 这段时间要");
  press("隐藏");
  ASSERT_EQ(windows().size(), 2u);
  EXPECT_EQ(windows()[1], (core::DailyWindow{1320, 360, 1}));
  EXPECT_EQ(shown(p)[2].rows[1].detail, "22:00 – 06:00（跨午夜） · 隐藏");
  coldStart();
  EXPECT_EQ(config().normalizedDailyWindows().size(), 2u);
}

TEST_F(Editor, CancellingAtTheSecondStepChangesNothing) {
  tap(p, 2, 1);
  press("确定");
  wait(0.4);
  press("取消");
  wait(1);
  EXPECT_EQ(alert(), nullptr);
  EXPECT_EQ(windows().size(), 1u);
}

TEST_F(Editor, EditingKeepsTheIndexAndTheWheelShowsTheWindow) {
  tap(p, 2, 0);
  EXPECT_EQ(alert()->title, "① 修改开始时间");
  long h = -1, m = -1;
  ui::pickerTime(sim::alertTimePicker(top()), h, m);
  EXPECT_EQ(h * 60 + m, 480);
  setTime(0, 0);
  press("确定");
  wait(0.4);
  EXPECT_EQ(alert()->title, "② 修改结束时间");
  setTime(23, 59);
  press("确定");
  wait(0.4);
  press("显示");
  ASSERT_EQ(windows().size(), 1u);
  EXPECT_EQ(windows()[0], (core::DailyWindow{0, 1439, 0}));
}

TEST_F(Editor, ARefusalShowsTheRuleMessageAndStoresNothing) {
  tap(p, 2, 1);
  setTime(9, 0);
  press("确定");
  wait(0.4);
  setTime(10, 0);
  press("确定");
  wait(0.4);
  press("隐藏");  // inside 08:00-22:00
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->message, core::kMsgOverlap);
  press("好");
  EXPECT_EQ(windows().size(), 1u);
  EXPECT_EQ(top(), p);  // the sequence does not reopen
}

TEST_F(Editor, TheLastWindowCannotBeDeletedAndTheTableStaysConsistent) {
  std::string msg;
  ASSERT_TRUE(config().addDailyWindowWithStart(1320, 360, 1, &msg)) << msg;
  process->runGuarded([&] { panel::QBPanelController::reload(p); });
  EXPECT_TRUE(swipe(p, 2, 1));
  EXPECT_EQ(windows().size(), 1u);
  EXPECT_EQ(shown(p)[2].rows.size(), 2u);
  EXPECT_FALSE(process->crashed());
}

}  // namespace
