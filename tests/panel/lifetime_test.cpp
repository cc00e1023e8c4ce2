// What the panel makes lives as long as its screens: ten visits to the
// panel, the picker and the window editor leave none of their controllers,
// dialogs or picker states behind.
#include <gtest/gtest.h>

#include <string_view>

#include "panel/contact_pick_controller.hpp"
#include "panel/panel_world.hpp"
#include "rt/ownership.hpp"

namespace {

class PanelLifetime : public qbtest::PanelWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice");
    addFriend("bob", "Bob");
    host.model.sessions = {"alice", "bob"};
    launchWithLibrary();
    wait(2);
  }
  long live(std::string_view cls) {
    long n = 0;
    for (rt::Id obj : process->runtime().liveObjects())
      if (rt::className(rt::classOf(obj)) == cls) ++n;
    return n;
  }
  // The panel's and the picker's cells, not the host's own list cells.
  long systemCells() {
    long n = 0;
    for (rt::Id obj : process->runtime().liveObjects())
      n += rt::className(rt::classOf(obj)) == "UITableViewCell" && !sim::representedBy(obj);
    return n;
  }
  void visit() {
    rt::Id p = openPanel();
    ASSERT_EQ(rt::className(p), "QBPanelController");
    tap(p, 7, 0);
    ASSERT_EQ(rt::className(top()), "QBContactPickController");
    ASSERT_EQ(shown(top()).at(0).rows.size(), 2u);
    process->runGuarded([&] { sim::pressLeftBarButton(top()); });
    ASSERT_EQ(top(), p);
    tap(p, 0, 1);  // schedule mode, for the window editor
    tap(p, 2, 0);
    ASSERT_NE(alert(), nullptr);
    press("确定");
    wait(0.4);
    press("取消");
    tap(p, 0, 0);
    process->runGuarded([&] { sim::pressLeftBarButton(p); });
    wait(1);
    ASSERT_NE(rt::className(top()), "QBPanelController");
  }
};

TEST_F(PanelLifetime, TenVisitsLeaveNothingTheSystemMadeAlive) {
  long navigations = live("UINavigationController"), tables = live("UITableView");
  for (int i = 0; i < 10; ++i) visit();
  EXPECT_EQ(live("QBPanelController"), 0);
  EXPECT_EQ(live("QBContactPickController"), 0);
  EXPECT_EQ(live("UIAlertController"), 0);
  EXPECT_EQ(live("UISearchController"), 0);
  EXPECT_EQ(live("UINavigationController"), navigations);
  EXPECT_EQ(live("UITableView"), tables);
  EXPECT_EQ(systemCells(), 0);
  EXPECT_EQ(live("UISwitch"), 0);
  EXPECT_EQ(panel::QBContactPickController::keptStates(), 0u);
  EXPECT_EQ(leaks(), std::vector<std::string>{});
}

// The check sees what the library made and nothing owns: a stray hold on the
// panel's navigation controller keeps it, and its stack, alive past the sheet.
TEST_F(PanelLifetime, AStrayHoldOnThePanelIsListedAsALeak) {
  rt::Id p = openPanel();
  ASSERT_EQ(rt::className(p), "QBPanelController");
  rt::Id nav = rt::send<rt::Id>(p, "navigationController");
  EXPECT_EQ(leaks(), std::vector<std::string>{}) << "presented, it is owned";
  rt::detail::retain(nav);
  process->runGuarded([&] { sim::pressLeftBarButton(p); });
  wait(1);
  std::vector<std::string> found = leaks();
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found.front().rfind("QBPanelController #", 0), 0u) << found.front();
  bool navListed = false;
  for (const std::string& line : found)
    navListed |= line.rfind("UINavigationController #", 0) == 0 &&
                 line.find("retain=1 made in panel::") != std::string::npos;
  EXPECT_TRUE(navListed) << ::testing::PrintToString(found);
  rt::detail::release(nav);
  EXPECT_EQ(leaks(), std::vector<std::string>{});
}

}  // namespace
