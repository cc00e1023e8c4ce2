// The panel's commands refuse what a person could not do: a tap on a label
// the page has not built yet, a swipe on a row that cannot be deleted.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

#include "runner.hpp"

namespace {

class PanelCli : public ::testing::Test {
 protected:
  std::string script(const std::string& text) {
    path = (std::filesystem::temp_directory_path() /
            ("quenby-panel-cli-" + std::to_string(::getpid()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".qbs"))
               .string();
    std::ofstream(path) << text;
    return path;
  }
  void TearDown() override { std::filesystem::remove(path); }
  int run() {
    out.str("");
    return qbsim::runFiles({path}, {}, out);
  }
  std::string path;
  std::ostringstream out;
};

TEST_F(PanelCli, TappingTheVersionBeforeTheLabelExistsIsAScriptError) {
  script("launch\nopen about\ntap version\n");
  EXPECT_EQ(run(), 2);
  EXPECT_NE(out.str().find(path + ":3: tap version: no version label yet (the About page builds "
                                  "its labels 300 ms after it opens: wait first)"),
            std::string::npos)
      << out.str();
}

TEST_F(PanelCli, DeletingARowThatCannotBeDeletedIsAScriptError) {
  script(
      "launch\nopen about\nwait 1\n"
      "tap version\ntap version\ntap version\ntap version\ntap version\n"
      "type 7351\npress 确定\nwait 1\nexpect screen panel\npanel delete 0 0\n");
  EXPECT_EQ(run(), 2);
  EXPECT_NE(out.str().find(path + ":13: panel delete: 0 0 cannot be deleted"), std::string::npos)
      << out.str();
}

TEST_F(PanelCli, PanelCommandsNeedThePanelOnScreen) {
  script("launch\npanel tap 0 0\n");
  EXPECT_EQ(run(), 2);
  EXPECT_NE(out.str().find(path + ":2: panel tap: the panel is not on screen"), std::string::npos)
      << out.str();
}

TEST_F(PanelCli, AnExpectedRowStateThatDoesNotHoldFails) {
  script(
      "launch\nopen about\nwait 1\n"
      "tap version\ntap version\ntap version\ntap version\ntap version\n"
      "type 7351\npress 确定\nwait 1\nexpect row 0 0 \"手动控制\" checked\nexpect row 0 1 "
      "\"定时控制\" checked\n");
  EXPECT_EQ(run(), 1);
  EXPECT_NE(out.str().find(":13: expect row 0 1 \"定时控制\" checked: got \"定时控制\" unchecked"),
            std::string::npos)
      << out.str();
}

// A person sees the time the wheel shows, so show screen says it too.
TEST_F(PanelCli, ShowScreenSaysTheTimeOnTheWheel) {
  script(
      "setting visibilityControl 1\nlaunch\nopen about\nwait 1\n"
      "tap version\ntap version\ntap version\ntap version\ntap version\n"
      "type 7351\npress 确定\nwait 1\npanel tap 2 1\nwait 0.5\ntime 09:05\nshow screen\n");
  EXPECT_EQ(run(), 0) << out.str();
  EXPECT_NE(out.str().find("time wheel: 09:05\nbuttons: [确定]  [取消]\n"), std::string::npos)
      << out.str();
}

}  // namespace
