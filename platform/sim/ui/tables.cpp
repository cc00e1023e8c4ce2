// Tables on the simulated UIKit: cells, switches and swipe actions, and the
// updates UIKit checks (a reloaded section that does not exist, or a deleted
// row the data source still counts, raises NSInternalInconsistencyException).
#include "ui/tables.hpp"

#include <string>
#include <utility>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "ui/drawing.hpp"
#include "ui/views.hpp"

namespace ui {

// Autoreleased, as the iOS backend hands it: the table retains what it shows.
rt::Id makeCell(const CellSpec& spec, const std::string& reuseIdentifier) {
  rt::Id cell = sim::autorelease(sim::newObject("UITableViewCell"));
  sim::extra<sim::CellState>(cell).reuseIdentifier = reuseIdentifier;
  configureCell(cell, spec);
  return cell;
}

rt::Id dequeueCell(rt::Id table, const std::string& reuseIdentifier) {
  return rt::send<rt::Id>(table, "dequeueReusableCellWithIdentifier:", rt::str(reuseIdentifier));
}

void configureCell(rt::Id cell, const CellSpec& spec) {
  sim::CellState& c = sim::extra<sim::CellState>(cell);
  rt::Id old = c.spec.accessoryView, oldImage = c.spec.image;
  c.spec = spec;
  rt::detail::retain(spec.accessoryView);
  rt::detail::retain(spec.image);
  rt::detail::release(old);
  rt::detail::release(oldImage);
  c.laidOut = true;
}

rt::Id makeSwitch(bool on, Color onTint, std::function<void(rt::Id sw)> changed) {
  rt::Id sw = sim::autorelease(sim::newObject("UISwitch"));
  sim::SwitchState& s = sim::extra<sim::SwitchState>(sw);
  s.on = on;
  s.onTint = onTint;
  s.changed = std::move(changed);
  return sw;
}

bool switchIsOn(rt::Id sw) { return rt::send<bool>(sw, "isOn"); }

rt::Id destructiveSwipe(const std::string& title, SwipeHandler handler) {
  rt::Id config = sim::newObject("UISwipeActionsConfiguration");
  sim::extra<sim::SwipeState>(config) = sim::SwipeState{title, std::move(handler)};
  return sim::autorelease(config);  // as UIKit's contextualActionWithStyle: hands it out
}

void reloadSection(rt::Id table, long section, RowAnimation) {
  sim::ensureCounts(table);
  sim::TableState& t = sim::extra<sim::TableState>(table);
  if (section < 0 || section >= long(t.rowCounts.size()))
    rt::raise("NSInternalInconsistencyException",
              "attempt to reload section " + std::to_string(section) + " that does not exist");
  sim::checkOtherSections(table, section);
  sim::dropSection(t, std::size_t(section));
  t.rowCounts[std::size_t(section)] = sim::askRows(table, section);
  sim::layoutOnScreen(table);
}

void deleteRow(rt::Id table, long section, long row, RowAnimation) {
  sim::TableState& t = sim::extra<sim::TableState>(table);
  if (!t.countsKnown || section < 0 || section >= long(t.rowCounts.size()) || row < 0 ||
      row >= t.rowCounts[std::size_t(section)])
    rt::raise("NSInternalInconsistencyException", "attempt to delete row " + std::to_string(row) +
                                                      " from section " + std::to_string(section) +
                                                      " which does not exist");
  long before = t.rowCounts[std::size_t(section)];
  long after = sim::askRows(table, section);
  if (after != before - 1)
    rt::raise("NSInternalInconsistencyException", sim::mismatch(section, before, after, 1));
  sim::checkOtherSections(table, section);
  t.rowCounts[std::size_t(section)] = after;
  // The deleted row's cell leaves; the others keep what they show.
  sim::ShownTableSection& shown = t.shown[std::size_t(section)];
  if (shown.loaded) {
    rt::detail::release(shown.cells[std::size_t(row)]);
    shown.cells.erase(shown.cells.begin() + row);
    shown.heights.erase(shown.heights.begin() + row);
  }
  sim::layoutOnScreen(table);  // a row below may move onto the screen
}

long shownRowCount(rt::Id table, long section) {
  sim::TableState& t = sim::extra<sim::TableState>(table);
  if (!t.countsKnown) return sim::askRows(table, section);
  return section >= 0 && section < long(t.rowCounts.size()) ? t.rowCounts[std::size_t(section)] : 0;
}

void styleTable(rt::Id table, const TableLook& look) {
  sim::extra<sim::TableState>(table).look = look;
}

rt::Id setStackedHeader(rt::Id table, double width, double margin,
                        const std::vector<HeaderLine>& lines) {
  rt::Id header = sim::newObject("UIView");
  sim::TableState& t = sim::extra<sim::TableState>(table);
  t.headerLines.clear();
  double height = 0;
  for (const HeaderLine& l : lines) {
    rt::Id label = makeLabel(l.text, LabelStyle{l.font, l.color, {0, 0, 0, 0}, true, 0, false, 0});
    rt::send<void>(
        label, "setFrame:", rt::CGRect{{margin, height}, {width - 2 * margin, l.font.size * 1.2}});
    rt::send<void>(header, "addSubview:", label);
    height += textSize(l.text, l.font).height + 4;
    t.headerLines.push_back(l.text);
  }
  t.headerSize = {width, height};
  // The table owns its header view (tableHeaderView), and hands it out unowned.
  rt::detail::release(std::exchange(t.headerView, header));
  sim::autorelease(rt::detail::retain(header));
  rt::send<void>(header, "setFrame:", rt::CGRect{{0, 0}, t.headerSize});
  return header;
}

}  // namespace ui
