// Every check, switch and password row of the panel's table, and `setting`
// with the same key and value, leave the same settings file: in the running
// app and before launch. The rows come from the table itself, so a row the
// table places or values wrongly shows up as a different file.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

#include "panel/panel_rows.hpp"
#include "runner.hpp"

namespace {

struct Step {
  std::vector<std::string> panelLines;
  std::string settingLine;
  std::string row;    // "S R"
  std::string title;  // what the row shows
};

std::string at(const panel::PanelRow& r) {
  return std::to_string(r.section) + " " + std::to_string(r.row);
}

// The visibility rows last: the schedule mode takes the wake and hide rows away.
std::vector<Step> stepsFromTable() {
  std::vector<const panel::PanelRow*> rows;
  for (const panel::PanelRow& r : panel::panelRows()) rows.push_back(&r);
  std::ranges::stable_partition(
      rows, [](const panel::PanelRow* r) { return r->section != panel::kVisibility; });
  std::vector<Step> steps;
  for (const panel::PanelRow* r : rows) {
    std::string key = r->key;
    switch (r->kind) {
      case panel::RowKind::Choice:
        steps.push_back({{"panel tap " + at(*r)},
                         "setting " + key + " " + std::to_string(r->value),
                         at(*r),
                         r->title});
        break;
      case panel::RowKind::Switch:
        for (const char* v : {"off", "on", "off"})
          steps.push_back({{"panel switch " + at(*r) + " " + v},
                           "setting " + key + " " + (v == std::string("on") ? "true" : "false"),
                           at(*r),
                           r->title});
        break;
      case panel::RowKind::Password:
        for (const char* pw : {"2468", "abc", "13579"})
          steps.push_back({{"panel tap " + at(*r), "wait 0.5", std::string("type ") + pw,
                            "press 确定", "wait 0.5"},
                           "setting " + key + " " + pw,
                           at(*r),
                           r->title});
        break;
      default:
        break;
    }
  }
  return steps;
}

std::string fileOf(qbsim::Session& s) {
  std::ifstream in(s.settingsPath(), std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

void run(qbsim::Session& s, const std::string& line) {
  std::string message;
  ASSERT_EQ(qbsim::runCommandLine(s, line, message), 0) << line << ": " << message;
}

// The file after each step. One session at a time: the simulated device is the process's.
std::vector<std::string> filesAfter(const std::vector<Step>& steps, bool throughPanel,
                                    const std::vector<std::string>& opening) {
  qbsim::Session s({}, std::cout);
  for (const std::string& line : opening) run(s, line);
  std::vector<std::string> files;
  for (const Step& step : steps) {
    SCOPED_TRACE(step.settingLine);
    if (throughPanel) {
      run(s, "expect row " + step.row + " \"" + step.title + "\"");
      for (const std::string& line : step.panelLines) run(s, line);
    } else {
      run(s, step.settingLine);
    }
    files.push_back(fileOf(s));
  }
  return files;
}

TEST(SettingRows, EachRowAndItsSettingLeaveTheSameFile) {
  std::vector<Step> steps = stepsFromTable();
  ASSERT_GE(steps.size(), 20u);
  std::vector<std::string> throughPanel = filesAfter(
      steps, true,
      {"launch", "wait 2", "open about", "wait 1", "tap version", "tap version", "tap version",
       "tap version", "tap version", "type 7351", "press 确定", "wait 1", "expect screen panel"});
  std::vector<std::string> running = filesAfter(steps, false, {"launch", "wait 2"});
  std::vector<std::string> beforeLaunch = filesAfter(steps, false, {});
  ASSERT_EQ(throughPanel.size(), steps.size());
  std::size_t changed = 0;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    SCOPED_TRACE(steps[i].settingLine);
    EXPECT_EQ(running[i], throughPanel[i]);
    EXPECT_EQ(beforeLaunch[i], throughPanel[i]);
    changed += i > 0 && throughPanel[i] != throughPanel[i - 1];
  }
  // Most steps change the file, or the comparison would prove little.
  EXPECT_GE(changed, steps.size() / 2);
}

// What the panel's mode rows and window editor do besides saving: the
// schedule applies at once, not at its next tick.
TEST(SettingRows, InARunningAppTheScheduleFollowsAtOnce) {
  qbsim::Session s({}, std::cout);
  for (const char* line :
       {"clock 12:00", "friend bob nick=Bob", "session bob", "secret bob", "launch", "wait 2",
        "expect hidden", "setting dailyWindows 11:00-13:00 show", "expect hidden",
        "setting visibilityControl 1", "expect revealed", "setting dailyWindows 11:00-13:00 hide",
        "expect hidden"})
    run(s, line);
}

// The panel drops a short password without saving anything, so a file not
// yet written stays unwritten.
TEST(SettingRows, AShortPasswordWritesNoFile) {
  qbsim::Session s({}, std::cout);
  run(s, "setting password abc");
  EXPECT_EQ(fileOf(s), "");
  run(s, "setting password 2468");
  EXPECT_NE(fileOf(s).find("<string>2468</string>"), std::string::npos);
}

}  // namespace
