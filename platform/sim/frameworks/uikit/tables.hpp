// The simulated table screens and their controls: UITableViewController,
// cells, switches, swipe actions, page sheets, bar buttons, search
// controllers, date pickers and tap recognizers with a location. A table is
// read the way UIKit asks it (sections, rows, heights, headers, footers,
// cells), so what the simulator prints is what the data source answered.
#pragma once

#include <any>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "rt/geometry.hpp"
#include "rt/types.hpp"
#include "sim/process.hpp"
#include "ui/navigation.hpp"
#include "ui/pickers.hpp"
#include "ui/tables.hpp"

namespace sim {

// The extra record of type T beside `obj` (created on first use).
template <typename T>
T& extra(rt::Id obj) {
  std::any& a = currentProcess().platform().objectExtras[obj];
  if (!std::any_cast<T>(&a)) a = T{};
  return *std::any_cast<T>(&a);
}
template <typename T>
T* findExtra(rt::Id obj) {
  auto& m = currentProcess().platform().objectExtras;
  auto it = m.find(obj);
  return it == m.end() ? nullptr : std::any_cast<T>(&it->second);
}

struct CellState {
  ui::CellSpec spec;
  std::string reuseIdentifier;
  bool laidOut = false;
  rt::Id represented = nullptr;  // the host's data object behind a host list's cell
};
struct SwitchState {
  bool on = false;
  ui::Color onTint;
  std::function<void(rt::Id)> changed;
};
struct SwipeState {
  std::string title;
  ui::SwipeHandler handler;
};
// A section as the table shows it: its header, footer and heights asked once,
// and each row's cell asked when the row first comes on screen, then kept
// (retained) until the section or the whole table is reloaded.
struct ShownTableSection {
  bool loaded = false;
  std::string header, footer;
  std::vector<rt::Id> cells;    // one per row; nil until the row is on screen
  std::vector<double> heights;  // one per row; the estimate until asked
};
struct TableState {
  long style = 0;
  ui::TableLook look;
  std::vector<std::string> headerLines;
  rt::CGSize headerSize;
  rt::Id headerView = nullptr;
  std::vector<long> rowCounts;  // as last asked: the basis of UIKit's update checks
  bool countsKnown = false;
  std::vector<ShownTableSection> shown;  // one per counted section
  // Cells that left the screen, by reuse identifier, for dequeueReusableCell (retained).
  std::map<std::string, std::vector<rt::Id>> reusable;
};
struct ScreenState {                 // a view controller's navigation item and presentation
  long modalPresentationStyle = -2;  // UIModalPresentationAutomatic
  bool largeDetentOnly = false, grabberVisible = false, prefersLargeTitles = true;
  std::string leftTitle;
  long leftStyle = 0;
  std::function<void()> leftAction;
  rt::Id searchController = nullptr;
  ui::Color background, tint;
  long tableStyle = 0;                // a table view controller's initWithStyle:
  std::function<void()> draggedAway;  // the presentation delegate's did-dismiss
};
struct SearchState {
  ui::SearchSpec spec;
  std::string text;
  std::function<void(const std::string&)> update;
};
struct DatePickerState {
  long hour = 0, minute = 0;
  std::string locale;
  ui::PickerLayout layout;
};
struct TapState {
  rt::Id touched = nullptr;  // the view the touch was given in
  rt::CGPoint point;         // in that view's coordinates
};

void registerTables();

// The colour of a person's placeholder avatar, the same wherever the person
// appears (lists, the lock screen, the share sheet).
ui::Color avatarTint(const std::string& person);

// A cell of one of the host's own lists: a default-style cell whose label
// shows `title` (and `detail` under it), standing for `represented`, with a
// placeholder avatar whose colour is the `person`'s (the title's when none).
rt::Id makeListCell(const std::string& title, const std::string& detail, rt::Id represented,
                    const std::string& person = "");
// The data object behind a host list's cell (nil for any other cell).
rt::Id representedBy(rt::Id cell);

struct ShownRow {
  std::string title, detail;
  std::string state;  // "checked", "on", "off" or ""
  double height = 0;
  rt::Id cell = nullptr;
};
struct ShownSection {
  std::string header, footer;
  std::vector<ShownRow> rows;
};
// The user scrolls from the top to the end and back: every row not yet on
// screen since the last reload is asked for, once.
void scrollThrough(rt::Id table);
// Every section and row of the table, read as a person scrolling through it
// reads them (scrollThrough). A row is asked from the data source as UIKit
// asks it the first time it comes on screen after a reload of its section or
// the table; otherwise it shows what it was configured with.
std::vector<ShownSection> showTable(rt::Id table);
// The table of a table view controller (nil for any other screen).
rt::Id tableOf(rt::Id controller);
// The user's hands: false when there is no such row / control / action.
bool selectRow(rt::Id table, long section, long row);
bool flipSwitch(rt::Id table, long section, long row, bool on);
bool swipeDelete(rt::Id table, long section, long row);
bool pressLeftBarButton(rt::Id controller);
bool typeSearch(rt::Id controller, const std::string& text);
// The time wheel of an alert, or nil.
rt::Id alertTimePicker(rt::Id alert);
void setPickerTime(rt::Id picker, long hour, long minute);
// A tap at `point` in `root`'s coordinates, delivered as UIKit delivers it
// (every recognizer from the hit view upwards gets it; one recognizes; a
// control's touch-up action follows unless that one cancels touches). False
// when neither a recognizer nor a control acted.
bool tapAt(rt::Id root, rt::CGPoint point);
// A tap at `point` in the screen of `controller` (its view's coordinates): its
// navigation bar, when it has one, lies over the view and takes the taps there.
bool tapOnScreen(rt::Id controller, rt::CGPoint point);

// How long UIKit's sheet and alert transitions take.
inline constexpr double kSheetAnimation_s = 0.3;
// The view's origin in the coordinates of the root of its tree.
rt::CGPoint absoluteOrigin(rt::Id view);
// The presented controller that `controller` is in, or null.
rt::Id presentedRoot(rt::Id controller);

// The table's bookkeeping that UIKit's updates share: the rows the data
// source answers now, the counts shown since the last reload (asked for when
// not yet known), a section's cells leaving or being loaded, UIKit's check
// that the other sections kept their counts, and the text of its complaint
// when a section did not.
long askRows(rt::Id table, long section);
void ensureCounts(rt::Id table);
void dropSection(TableState& t, std::size_t section);
ShownTableSection& loadSection(rt::Id table, long section);
// The cell of a row coming on screen, asked once until the row is reloaded.
rt::Id cellAt(rt::Id table, long section, long row);
// The layout that follows a reload in the same turn: the cells of the rows
// on screen, from the top, stacked by their heights until the frame is full,
// by section.
std::vector<std::vector<rt::Id>> layoutOnScreen(rt::Id table);
void checkOtherSections(rt::Id table, long changed);
std::string mismatch(long section, long before, long after, long deleted);

}  // namespace sim
