// A launched host app with the panel opened the way the entry opens it
// (password, then the sheet), and the panel's table read as UIKit reads it.
#pragma once

#include <string>
#include <vector>

#include "core/config.hpp"
#include "panel/panel_controller.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "support/host_world.hpp"

namespace qbtest {

class PanelWorld : public HostWorld {
 protected:
  core::QBConfig& config() { return core::QBConfig::shared(); }
  rt::Id top() { return sim::topController(); }
  sim::AlertState* alert() { return top() ? sim::alertState(top()) : nullptr; }
  void press(const char* title) {
    ASSERT_NE(alert(), nullptr) << "no dialog for " << title;
    process->runGuarded([&] { sim::pressAlertAction(top(), title); });
  }
  void type(const std::string& text) { sim::typeIntoAlert(top(), text); }
  // Opens the panel through its authentication, as five taps would.
  rt::Id openPanel() {
    process->runGuarded([] { panel::QBPanelController::presentFrom(nullptr); });
    wait(0.01);
    type(core::kDefaultPassword);
    press("确定");
    wait(1);
    rt::Id p = top();
    EXPECT_EQ(rt::className(p), "QBPanelController");
    return p;
  }
  std::vector<sim::ShownSection> shown(rt::Id controller) {
    std::vector<sim::ShownSection> out;
    process->runGuarded([&] { out = sim::showTable(sim::tableOf(controller)); });
    return out;
  }
  bool tap(rt::Id panel, long s, long r) {
    bool ok = false;
    process->runGuarded([&] { ok = sim::selectRow(sim::tableOf(panel), s, r); });
    return ok;
  }
  bool swipe(rt::Id panel, long s, long r) {
    bool ok = false;
    process->runGuarded([&] { ok = sim::swipeDelete(sim::tableOf(panel), s, r); });
    return ok;
  }
  void setTime(long hour, long minute) {
    sim::setPickerTime(sim::alertTimePicker(top()), hour, minute);
  }
  // A cold start of the app: what the settings file holds is what it shows.
  void coldStart() {
    process.reset();
    launchWithLibrary();
    wait(2);
  }
};

}  // namespace qbtest
