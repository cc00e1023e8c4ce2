// The About page's taps and the control panel: tap, time, panel, picker,
// show panel, show picker, expect row, expect rows. The panel and the picker
// are read as UIKit reads them: their data source answers, row by row.
#include <cstdlib>

#include "commands.hpp"
#include "sim/hostapp/about_page.hpp"
#include "panel/contact_pick_controller.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace qbsim {
namespace {

constexpr double kTapDuration = 0.01;

long intArg(const Command& c, std::size_t i, const std::string& usage) {
  const std::string& w = c.words.at(i);
  char* end = nullptr;
  long v = std::strtol(w.c_str(), &end, 10);
  if (w.empty() || *end) throw ScriptError{"bad number '" + w + "' (usage: " + usage + ")"};
  return v;
}

double pointArg(const Command& c, std::size_t i, const std::string& usage) {
  const std::string& w = c.words.at(i);
  char* end = nullptr;
  double v = std::strtod(w.c_str(), &end);
  if (w.empty() || *end) throw ScriptError{"bad number '" + w + "' (usage: " + usage + ")"};
  return v;
}

rt::Id screenOfClass(Session& s, const std::string& command, const char* cls, const char* name,
                     bool acting) {
  if (acting)
    s.requireForeground(command);
  else
    s.requireProcess(command);
  rt::Id top = sim::topController();
  if (!top || rt::className(top) != cls)
    throw ScriptError{command + ": the " + name + " is not on screen"};
  s.process()->runGuarded(
      [&] { rt::send<rt::Id>(top, "view"); });  // the screen on top has loaded its view
  return top;
}
rt::Id panelScreen(Session& s, const std::string& command, bool acting = false) {
  return screenOfClass(s, command, "QBPanelController", "panel", acting);
}
rt::Id pickerScreen(Session& s, const std::string& command, bool acting = false) {
  return screenOfClass(s, command, "QBContactPickController", "contact picker", acting);
}

void printTable(Session& s, rt::Id controller) {
  std::vector<sim::ShownSection> sections;
  s.process()->runGuarded([&] { sections = sim::showTable(sim::tableOf(controller)); });
  if (sim::TableState* t = sim::findExtra<sim::TableState>(sim::tableOf(controller)))
    for (const std::string& line : t->headerLines) s.out() << line << "\n";
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const sim::ShownSection& sec = sections[i];
    if (sec.header.empty() && sec.rows.empty() && sec.footer.empty()) continue;
    s.out() << "§" << i << (sec.header.empty() ? "" : " " + sec.header) << "\n";
    for (std::size_t r = 0; r < sec.rows.size(); ++r) {
      const sim::ShownRow& row = sec.rows[r];
      s.out() << "  " << i << "," << r << "  " << row.title;
      if (!row.detail.empty()) s.out() << " — " << row.detail;
      if (row.state == "checked")
        s.out() << "  ✓";
      else if (!row.state.empty())
        s.out() << "  [" << row.state << "]";
      s.out() << "\n";
    }
    if (!sec.footer.empty()) s.out() << "  (" << sec.footer << ")\n";
  }
}

// Runs a user action in the app; `acted` false means the row or control was not there.
void act(Session& s, const std::string& what, const std::function<bool()>& action) {
  bool acted = true;
  s.process()->runGuarded([&] { acted = action(); });
  if (!acted) throw ScriptError{what};
}

// The version label's centre in the page's view.
rt::CGPoint centreIn(rt::Id view, rt::Id root) {
  rt::CGRect f = sim::viewState(view)->frame;
  rt::CGPoint p{f.origin.x + f.size.width / 2, f.origin.y + f.size.height / 2};
  for (rt::Id v = sim::viewState(view)->superview; v && v != root;
       v = sim::viewState(v)->superview) {
    p.x += sim::viewState(v)->frame.origin.x;
    p.y += sim::viewState(v)->frame.origin.y;
  }
  return p;
}

void addTap(CommandTable& t) {
  const std::string usage = "tap version|nav [DX]|page [Y]";
  t["tap"] = {usage, [usage](Session& s, const Command& c) {
                requireWords(c, 2, 3, usage);
                rt::Id page =
                    screenOfClass(s, "tap", "SettingAboutMMViewController", "About page", true);
                rt::Id view = rt::send<rt::Id>(page, "view");
                const std::string& where = c.words[1];
                if (where == "version") {
                  if (c.words.size() != 2) throw ScriptError{"usage: " + usage};
                  rt::Id label = hostapp::aboutVersionLabel(page);
                  if (!label)
                    throw ScriptError{
                        "tap version: no version label yet (the About page builds its labels " +
                        std::to_string(int(hostapp::kAboutLabelsDelay * 1000)) +
                        " ms after it opens: wait first)"};
                  s.process()->runGuarded([&] { sim::tapOnScreen(page, centreIn(label, view)); });
                } else if (where == "nav") {
                  double dx = c.words.size() == 3 ? pointArg(c, 2, usage) : 0;
                  rt::Id bar = rt::send<rt::Id>(rt::send<rt::Id>(page, "navigationController"),
                                                "navigationBar");
                  if (!bar) throw ScriptError{"tap nav: the About page has no navigation bar"};
                  rt::CGRect b = sim::viewState(bar)->frame;
                  s.process()->runGuarded([&] {
                    sim::tapAt(bar, {b.size.width / 2 + dx, b.size.height / 2});
                  });
                } else if (where == "page") {
                  double y = c.words.size() == 3 ? pointArg(c, 2, usage) : 100;
                  double x = sim::viewState(view)->frame.size.width / 2;
                  s.process()->runGuarded([&] { sim::tapOnScreen(page, {x, y}); });
                } else {
                  throw ScriptError{"usage: " + usage};
                }
                s.advance(kTapDuration);
              }};
  t["time"] = {"time HH:MM", [](Session& s, const Command& c) {
                 requireWords(c, 2, 2, "time HH:MM");
                 int hour = 0, minute = 0;
                 clockArg(c, 1, "time HH:MM", hour, minute);
                 s.requireForeground("time");
                 rt::Id top = sim::topController();
                 rt::Id picker = top ? sim::alertTimePicker(top) : nullptr;
                 if (!picker) throw ScriptError{"time: no time wheel on screen"};
                 sim::setPickerTime(picker, hour, minute);
               }};
}

void addPanel(CommandTable& t) {
  const std::string usage =
      "panel tap S R | panel switch S R on|off | panel delete S R | panel done | panel dismiss";
  t["panel"] = {
      usage, [usage](Session& s, const Command& c) {
        requireWords(c, 2, 5, usage);
        const std::string& what = c.words[1];
        rt::Id panel = panelScreen(s, "panel " + what, true);
        rt::Id table = sim::tableOf(panel);
        if (what == "done" || what == "dismiss") {
          if (c.words.size() != 2) throw ScriptError{"usage: " + usage};
          if (what == "done")
            act(s, "panel done: the panel has no done button",
                [&] { return sim::pressLeftBarButton(panel); });
          else
            act(s, "panel dismiss: the panel's sheet cannot be dragged",
                [&] { return sim::dragAway(rt::send<rt::Id>(panel, "navigationController")); });
          return;
        }
        std::size_t words = what == "switch" ? 5 : 4;
        if (c.words.size() != words || (what != "tap" && what != "switch" && what != "delete"))
          throw ScriptError{"usage: " + usage};
        long section = intArg(c, 2, usage), row = intArg(c, 3, usage);
        std::string at = " " + std::to_string(section) + " " + std::to_string(row);
        if (what == "tap") {
          act(s, "panel tap:" + at + " is no row of the panel",
              [&] { return sim::selectRow(table, section, row); });
        } else if (what == "switch") {
          const std::string& v = c.words[4];
          if (v != "on" && v != "off") throw ScriptError{"usage: " + usage};
          act(s, "panel switch:" + at + " has no switch",
              [&] { return sim::flipSwitch(table, section, row, v == "on"); });
        } else {
          act(s, "panel delete:" + at + " cannot be deleted",
              [&] { return sim::swipeDelete(table, section, row); });
        }
      }};
  const std::string pickerUsage = "picker search TEXT | picker pick USER | picker back";
  t["picker"] = {
      pickerUsage, [pickerUsage](Session& s, const Command& c) {
        requireWords(c, 2, 3, pickerUsage);
        const std::string& what = c.words[1];
        rt::Id picker = pickerScreen(s, "picker " + what, true);
        rt::Id table = sim::tableOf(picker);
        if (what == "back" && c.words.size() == 2) {
          act(s, "picker back: no back button", [&] { return sim::pressLeftBarButton(picker); });
        } else if (what == "search" && c.words.size() == 3) {
          act(s, "picker search: no search field",
              [&] { return sim::typeSearch(picker, c.words[2]); });
        } else if (what == "pick" && c.words.size() == 3) {
          const auto& items = panel::QBContactPickController::filteredItems(picker);
          long row = -1;
          for (std::size_t i = 0; i < items.size() && row < 0; ++i)
            if (items[i].username == c.words[2]) row = long(i);
          if (row < 0)
            throw ScriptError{"picker pick: " + c.words[2] + " is not in the list shown"};
          act(s, "picker pick: no such row", [&] { return sim::selectRow(table, 0, row); });
        } else {
          throw ScriptError{"usage: " + pickerUsage};
        }
      }};
}

void addLooking(CommandTable& t) {
  t["show panel"] = {"show panel", [](Session& s, const Command& c) {
                       requireWords(c, 2, 2, "show panel");
                       printTable(s, panelScreen(s, "show panel"));
                     }};
  t["show picker"] = {"show picker", [](Session& s, const Command& c) {
                        requireWords(c, 2, 2, "show picker");
                        rt::Id picker = pickerScreen(s, "show picker");
                        s.out() << rt::asString(rt::send<rt::Id>(picker, "title")).value_or("")
                                << "\n";
                        printTable(s, picker);
                      }};
  const std::string rowUsage = "expect row S R \"TITLE\" [checked|unchecked|on|off]";
  t["expect row"] = {
      rowUsage, [rowUsage](Session& s, const Command& c) {
        requireWords(c, 5, 6, rowUsage);
        long section = intArg(c, 2, rowUsage), row = intArg(c, 3, rowUsage);
        std::string state = c.words.size() == 6 ? c.words[5] : "";
        if (!state.empty() && state != "checked" && state != "unchecked" && state != "on" &&
            state != "off")
          throw ScriptError{"usage: " + rowUsage};
        rt::Id panel = panelScreen(s, "expect row");
        std::vector<sim::ShownSection> sections;
        s.process()->runGuarded([&] { sections = sim::showTable(sim::tableOf(panel)); });
        if (section < 0 || section >= long(sections.size()) || row < 0 ||
            row >= long(sections[std::size_t(section)].rows.size()))
          throw ExpectFailure{"no row " + std::to_string(section) + " " + std::to_string(row)};
        const sim::ShownRow& r = sections[std::size_t(section)].rows[std::size_t(row)];
        std::string shown = r.state.empty() ? "unchecked" : r.state;
        if (r.title != c.words[4] || (!state.empty() && shown != state))
          throw ExpectFailure{"\"" + r.title + "\" " + shown};
      }};
  t["expect rows"] = {
      "expect rows S N", [](Session& s, const Command& c) {
        requireWords(c, 4, 4, "expect rows S N");
        long section = intArg(c, 2, "expect rows S N"), n = intArg(c, 3, "expect rows S N");
        rt::Id panel = panelScreen(s, "expect rows");
        std::vector<sim::ShownSection> sections;
        s.process()->runGuarded([&] { sections = sim::showTable(sim::tableOf(panel)); });
        if (section < 0 || section >= long(sections.size()))
          throw ExpectFailure{"no section " + std::to_string(section)};
        long got = long(sections[std::size_t(section)].rows.size());
        if (got != n) throw ExpectFailure{std::to_string(got)};
      }};
}

}  // namespace

void addPanelCommands(CommandTable& t) {
  addTap(t);
  addPanel(t);
  addLooking(t);
}

}  // namespace qbsim
