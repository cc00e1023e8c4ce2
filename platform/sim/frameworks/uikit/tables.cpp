// UITableView's rows, UITableViewController, UITableViewCell, UISwitch and
// swipe actions, and the bookkeeping the table's updates (ui/tables) check as
// UIKit does, so a data source's wrong answer shows as it would on a phone.
// A table asks what UIKit asks: on a reload, the counts, then the cells of the
// rows that fit its frame; a row further down when it is scrolled to or
// touched; every row's height only when the delegate answers heights and no
// estimate is set.
// Kinder than UIKit, still: a cell scrolled off screen is kept until its
// section is reloaded instead of being reused, so scrolling back asks nothing.
#include "sim/frameworks/uikit/tables.hpp"

#include <cstdio>
#include <utility>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/views.hpp"
#include "base/utf8.hpp"
#include "ui/colors.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

Id initWithStyle(Id self, SEL, long style) {
  extra<ScreenState>(self).tableStyle = style;
  return self;
}

// A table view controller's view is its table, with itself as data source and delegate.
Id tableControllerView(Id self, SEL) {
  ControllerState& c = *controllerState(self);
  if (!c.viewLoaded) {
    c.viewLoaded = true;
    c.view = newObject("UITableView");
    extra<TableState>(c.view).style = extra<ScreenState>(self).tableStyle;
    rt::send<void>(c.view, "setDataSource:", self);
    rt::send<void>(c.view, "setDelegate:", self);
    rt::send<void>(self, "viewDidLoad");
  }
  return c.view;
}
Id tableView(Id self, SEL) { return rt::send<Id>(self, "view"); }

void deselectRow(Id, SEL, Id, bool) {}

long askSections(Id table) {
  Id ds = rt::send<Id>(table, "dataSource");
  return rt::respondsTo(ds, rt::sel("numberOfSectionsInTableView:"))
             ? rt::send<long>(ds, "numberOfSectionsInTableView:", table)
             : 1;
}
void recordCounts(Id table) {
  TableState& t = extra<TableState>(table);
  for (std::size_t s = 0; s < t.shown.size(); ++s) dropSection(t, s);
  t.shown.clear();
  t.rowCounts.clear();
  if (!rt::send<Id>(table, "dataSource")) return;
  for (long s = 0, n = askSections(table); s < n; ++s) t.rowCounts.push_back(askRows(table, s));
  t.shown.resize(t.rowCounts.size());
  t.countsKnown = true;
}
Id dequeueReusable(Id self, SEL, Id identifier) {
  auto& pool = extra<TableState>(self).reusable[rt::asString(identifier).value_or("")];
  if (pool.empty()) return nullptr;
  Id cell = pool.back();
  pool.pop_back();
  return sim::autorelease(cell);  // the pool's hold, handed over
}
void tableDealloc(Id self, SEL cmd) {
  TableState& t = extra<TableState>(self);
  for (std::size_t s = 0; s < t.shown.size(); ++s) dropSection(t, s);
  for (auto& [id, cells] : t.reusable)
    for (Id cell : cells) rt::detail::release(cell);
  t.reusable.clear();
  rt::detail::release(std::exchange(t.headerView, nullptr));
  superDealloc(self, cmd, "UITableView");
}
// A cell owns the control it shows as its accessory, and its image.
void cellDealloc(Id self, SEL cmd) {
  if (CellState* c = findExtra<CellState>(self)) {
    rt::detail::release(std::exchange(c->spec.accessoryView, nullptr));
    rt::detail::release(std::exchange(c->spec.image, nullptr));
  }
  superDealloc(self, cmd, "UITableViewCell");
}
// UIKit asks its data source for the sections, each section's row count, then
// a cell for each row on screen; the rest wait until they are scrolled to.
void reloadData(Id self, SEL) {
  ViewState& v = *viewState(self);
  ++v.reloads;
  recordCounts(self);
  v.shownRows = layoutOnScreen(self);
}

bool switchOn(Id self, SEL) { return extra<SwitchState>(self).on; }
void setSwitchOn(Id self, SEL, bool on) { extra<SwitchState>(self).on = on; }

// A row the user can touch is on screen, and showing the table asked its
// counts: that is UIKit's basis for the updates that follow.
// The user scrolls the row on screen to touch it.
bool rowExists(Id table, long section, long row) {
  ensureCounts(table);
  const TableState& t = extra<TableState>(table);
  if (section < 0 || section >= long(t.rowCounts.size()) || row < 0 ||
      row >= t.rowCounts[std::size_t(section)])
    return false;
  cellAt(table, section, row);
  return true;
}

Id indexPathOf(long section, long row) { return rt::indexPath(row, section); }

}  // namespace

long askRows(Id table, long section) {
  return rt::send<long>(rt::send<Id>(table, "dataSource"),
                        "tableView:numberOfRowsInSection:", table, section);
}

// A section's cells leave the screen: those with a reuse identifier wait to
// be dequeued, the others go.
void dropSection(TableState& t, std::size_t section) {
  if (section >= t.shown.size()) return;
  ShownTableSection& shown = t.shown[section];
  for (Id cell : shown.cells) {
    if (!cell) continue;  // never asked for
    CellState* c = findExtra<CellState>(cell);
    if (c && !c->reuseIdentifier.empty())
      t.reusable[c->reuseIdentifier].push_back(cell);  // with the table's retain
    else
      rt::detail::release(cell);
  }
  shown = ShownTableSection{};
}

void ensureCounts(Id table) {
  if (!extra<TableState>(table).countsKnown) recordCounts(table);
}

namespace {
bool answersHeights(Id table) {
  return rt::respondsTo(rt::send<Id>(table, "delegate"),
                        rt::sel("tableView:heightForRowAtIndexPath:"));
}
double askHeight(Id table, long section, long row) {
  return rt::send<double>(rt::send<Id>(table, "delegate"),
                          "tableView:heightForRowAtIndexPath:", table, rt::indexPath(row, section));
}
}  // namespace

// Asks the data source for a section's header and footer, and its rows'
// heights where UIKit needs them before any cell: every row's when the
// delegate answers heights and no estimate is set; otherwise each row stands
// at the estimate until it comes on screen.
ShownTableSection& loadSection(Id table, long section) {
  TableState& t = extra<TableState>(table);
  ShownTableSection& sec = t.shown[std::size_t(section)];
  if (sec.loaded) return sec;
  Id ds = rt::send<Id>(table, "dataSource");
  if (rt::respondsTo(ds, rt::sel("tableView:titleForHeaderInSection:")))
    sec.header =
        rt::asString(rt::send<Id>(ds, "tableView:titleForHeaderInSection:", table, section))
            .value_or("");
  if (rt::respondsTo(ds, rt::sel("tableView:titleForFooterInSection:")))
    sec.footer =
        rt::asString(rt::send<Id>(ds, "tableView:titleForFooterInSection:", table, section))
            .value_or("");
  long rows = t.rowCounts[std::size_t(section)];
  bool estimated = t.look.estimatedRowHeight > 0;
  bool heights = answersHeights(table);
  double fixed = t.look.automaticRowHeight ? t.look.estimatedRowHeight : 44;
  sec.cells.assign(std::size_t(rows), nullptr);
  sec.heights.assign(std::size_t(rows), fixed);
  if (heights && !estimated)
    for (long r = 0; r < rows; ++r) sec.heights[std::size_t(r)] = askHeight(table, section, r);
  sec.loaded = true;
  return sec;
}

Id cellAt(Id table, long section, long row) {
  ShownTableSection& sec = loadSection(table, section);
  Id& cell = sec.cells[std::size_t(row)];
  if (cell) return cell;
  TableState& t = extra<TableState>(table);
  if (t.look.estimatedRowHeight > 0 && answersHeights(table))
    sec.heights[std::size_t(row)] = askHeight(table, section, row);
  Id got = rt::send<Id>(rt::send<Id>(table, "dataSource"),
                        "tableView:cellForRowAtIndexPath:", table, rt::indexPath(row, section));
  if (!got)
    rt::raise("NSInternalInconsistencyException", "UITableView dataSource returned a nil cell");
  // The data source may have reloaded the table meanwhile: look again.
  TableState& now = extra<TableState>(table);
  if (std::size_t(section) >= now.shown.size() ||
      std::size_t(row) >= now.shown[std::size_t(section)].cells.size())
    return got;
  Id& slot = now.shown[std::size_t(section)].cells[std::size_t(row)];
  if (slot) return slot;
  slot = rt::detail::retain(got);
  return slot;
}

std::vector<std::vector<Id>> layoutOnScreen(Id table) {
  std::vector<std::vector<Id>> shown;
  double height = viewState(table)->frame.size.height, y = 0;
  long sections = long(extra<TableState>(table).rowCounts.size());
  for (long s = 0; s < sections; ++s) loadSection(table, s);  // the content's height
  for (long s = 0; s < sections; ++s) {
    std::vector<Id>& cells = shown.emplace_back();
    for (long r = 0; r < extra<TableState>(table).rowCounts[std::size_t(s)] && y < height; ++r) {
      cells.push_back(cellAt(table, s, r));
      double h = extra<TableState>(table).shown[std::size_t(s)].heights[std::size_t(r)];
      y += h > 0 ? h : 44;
    }
  }
  return shown;
}

// UIKit's check after an update: every section other than `changed` answers
// the count it showed, and the number of sections is the same.
void checkOtherSections(Id table, long changed) {
  TableState& t = extra<TableState>(table);
  long sections = askSections(table);
  if (sections != long(t.rowCounts.size()))
    rt::raise("NSInternalInconsistencyException",
              "Invalid update: invalid number of sections. The number of sections contained in "
              "the table view after the update (" +
                  std::to_string(sections) + ") must be equal to the number of sections before (" +
                  std::to_string(t.rowCounts.size()) + ")");
  for (long s = 0; s < sections; ++s) {
    long before = t.rowCounts[std::size_t(s)];
    if (s != changed && askRows(table, s) != before)
      rt::raise("NSInternalInconsistencyException",
                "Invalid update: invalid number of rows in section " + std::to_string(s) +
                    ". The number of rows contained in an existing section after the update (" +
                    std::to_string(askRows(table, s)) + ") must be equal to " +
                    std::to_string(before));
  }
}

std::string mismatch(long section, long before, long after, long deleted) {
  char buf[200];
  std::snprintf(buf, sizeof buf,
                "Invalid update: invalid number of rows in section %ld. The number of rows "
                "contained in an existing "
                "section after the update (%ld) must be equal to %ld minus %ld deleted",
                section, after, before, deleted);
  return buf;
}

void registerTables() {
  ClassBuilder("UITableViewController", "UIViewController")
      .method("initWithStyle:", initWithStyle)
      .method("view", tableControllerView)
      .method("tableView", tableView)
      .build();
  ClassBuilder("UITableViewCell", "UIView").method("dealloc", cellDealloc).build();
  ClassBuilder("UIControl", "UIView").build();
  ClassBuilder("UISwitch", "UIControl")
      .method("isOn", switchOn)
      .method("setOn:", setSwitchOn)
      .build();
  ClassBuilder("UIContextualAction").build();
  ClassBuilder("UISwipeActionsConfiguration").build();
  rt::Class table = rt::getClass("UITableView");
  rt::addMethod(table, rt::sel("deselectRowAtIndexPath:animated:"), deselectRow);
  rt::addMethod(table, rt::sel("dequeueReusableCellWithIdentifier:"), dequeueReusable);
  rt::addMethod(table, rt::sel("dealloc"), tableDealloc);
  rt::addMethod(table, rt::sel("reloadData"), reloadData);
}

ui::Color avatarTint(const std::string& person) {
  std::uint32_t hash = 2166136261u;
  for (unsigned char ch : person) hash = (hash ^ ch) * 16777619u;
  return {0.35 + 0.4 * double(hash % 7) / 6, 0.55 + 0.3 * double(hash / 7 % 5) / 4,
          0.6 + 0.3 * double(hash / 35 % 3) / 2, 1};
}

rt::Id makeListCell(const std::string& title, const std::string& detail, rt::Id represented,
                    const std::string& person) {
  // Kinder than UIKit: never released, as the host's list readers keep them
  // (a data source hands its cells out autoreleased).
  Id cell = newObject("UITableViewCell");
  CellState& c = extra<CellState>(cell);
  c.spec.style = detail.empty() ? ui::CellStyle::Default : ui::CellStyle::Subtitle;
  c.spec.title = title;
  c.spec.detail = detail;
  c.spec.titleFont = ui::Font{16, ui::Weight::Regular};
  c.spec.detailFont = ui::Font{12, ui::Weight::Regular};
  c.represented = represented;
  c.laidOut = true;
  if (title.empty()) return cell;
  // A placeholder avatar: the name's first character on a colour of its own.
  std::size_t first = 0;
  base::decodeUtf8(title, first);
  ui::Color tint = avatarTint(person.empty() ? title : person);
  ui::Font initialFont{16, ui::Weight::Semibold};
  rt::CGSize size = ui::textSize(title.substr(0, first), initialFont);
  c.spec.image = rt::detail::retain(
      ui::renderImage({34, 34}, 0, true,
                      {ui::FillRect{{{0, 0}, {34, 34}}, tint, 6},
                       ui::DrawText{title.substr(0, first),
                                    {(34 - size.width) / 2, (34 - size.height) / 2},
                                    initialFont,
                                    ui::kWhite}}));
  return cell;
}

rt::Id representedBy(rt::Id cell) {
  CellState* c = cell ? findExtra<CellState>(cell) : nullptr;
  return c ? c->represented : nullptr;
}

rt::Id tableOf(rt::Id controller) {
  if (!controller || !rt::isKindOf(controller, "UITableViewController")) return nullptr;
  return rt::send<Id>(controller, "tableView");
}

void scrollThrough(rt::Id table) {
  if (!rt::send<Id>(table, "dataSource")) return;
  ensureCounts(table);
  for (long s = 0; s < long(extra<TableState>(table).rowCounts.size()); ++s)
    for (long r = 0; r < extra<TableState>(table).rowCounts[std::size_t(s)]; ++r)
      cellAt(table, s, r);
}

std::vector<ShownSection> showTable(rt::Id table) {
  std::vector<ShownSection> out;
  if (!rt::send<Id>(table, "dataSource")) return out;
  scrollThrough(table);
  for (const ShownTableSection& shown : extra<TableState>(table).shown) {
    ShownSection sec;
    sec.header = shown.header;
    sec.footer = shown.footer;
    for (std::size_t r = 0; r < shown.cells.size(); ++r) {
      ShownRow row;
      row.height = shown.heights[r];
      row.cell = shown.cells[r];
      const ui::CellSpec& spec = extra<CellState>(row.cell).spec;
      row.title = spec.title;
      row.detail = spec.detail;
      if (spec.accessoryView && rt::isKindOf(spec.accessoryView, "UISwitch"))
        row.state = extra<SwitchState>(spec.accessoryView).on ? "on" : "off";
      else if (spec.accessory == ui::Accessory::Checkmark)
        row.state = "checked";
      sec.rows.push_back(row);
    }
    out.push_back(std::move(sec));
  }
  return out;
}

bool selectRow(rt::Id table, long section, long row) {
  if (!rowExists(table, section, row)) return false;
  Id dl = rt::send<Id>(table, "delegate");
  if (rt::respondsTo(dl, rt::sel("tableView:didSelectRowAtIndexPath:")))
    rt::send<void>(dl, "tableView:didSelectRowAtIndexPath:", table, indexPathOf(section, row));
  return true;
}

bool flipSwitch(rt::Id table, long section, long row, bool on) {
  if (!rowExists(table, section, row)) return false;
  // The switch the user touches is the one on screen.
  Id cell = cellAt(table, section, row);
  CellState* c = findExtra<CellState>(cell);
  Id sw = c ? c->spec.accessoryView : nullptr;
  if (!sw || !rt::isKindOf(sw, "UISwitch")) return false;
  SwitchState& s = extra<SwitchState>(sw);
  if (s.on == on) return true;  // no change, no event
  s.on = on;
  if (auto changed = s.changed) changed(sw);
  return true;
}

bool swipeDelete(rt::Id table, long section, long row) {
  if (!rowExists(table, section, row)) return false;
  Id ds = rt::send<Id>(table, "dataSource");
  Id dl = rt::send<Id>(table, "delegate");
  Id ip = indexPathOf(section, row);
  bool commits = rt::respondsTo(ds, rt::sel("tableView:commitEditingStyle:forRowAtIndexPath:"));
  bool editable = rt::respondsTo(ds, rt::sel("tableView:canEditRowAtIndexPath:"))
                      ? rt::send<bool>(ds, "tableView:canEditRowAtIndexPath:", table, ip)
                      : commits;
  if (!editable) return false;
  Id config =
      rt::respondsTo(dl, rt::sel("tableView:trailingSwipeActionsConfigurationForRowAtIndexPath:"))
          ? rt::send<Id>(dl, "tableView:trailingSwipeActionsConfigurationForRowAtIndexPath:", table,
                         ip)
          : nullptr;
  if (SwipeState* swipe = findExtra<SwipeState>(config)) {
    if (auto handler = swipe->handler) handler([](bool) {});
    return true;
  }
  if (!commits) return false;
  rt::send<void>(ds, "tableView:commitEditingStyle:forRowAtIndexPath:", table, long(1), ip);
  return true;
}

}  // namespace sim
