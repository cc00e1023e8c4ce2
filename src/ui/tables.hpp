// Table screens the system builds itself (the panel, the contact picker):
// cells, their switches and swipe actions, and the table calls that change
// what is shown. On iOS: UITableViewCell initWithStyle:reuseIdentifier:,
// textLabel / detailTextLabel (text, font, textColor, numberOfLines),
// imageView (image, layer.cornerRadius, clipsToBounds), accessoryType,
// accessoryView, selectionStyle, tintColor and layoutIfNeeded;
// UITableView dequeueReusableCellWithIdentifier:, reloadSections:withRowAnimation:,
// deleteRowsAtIndexPaths:withRowAnimation:, separatorInset, rowHeight
// (UITableViewAutomaticDimension), estimatedRowHeight, tableHeaderView;
// UISwitch (on, onTintColor, addTarget:action:forControlEvents: with
// UIControlEventValueChanged through a trampoline holding the block);
// UIContextualAction contextualActionWithStyle:title:handler: (destructive)
// in a UISwipeActionsConfiguration.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "rt/types.hpp"
#include "ui/colors.hpp"
#include "ui/drawing.hpp"

namespace ui {

// UITableViewStyle: the panel and the picker use the inset-grouped style.
enum class TableStyle : long { Plain = 0, Grouped = 1, InsetGrouped = 2 };
// UITableViewCellStyle.
enum class CellStyle : long { Default = 0, Value1 = 1, Value2 = 2, Subtitle = 3 };
// UITableViewCellAccessoryType.
enum class Accessory : long { None = 0, DisclosureIndicator = 1, Checkmark = 3 };
// UITableViewRowAnimation.
enum class RowAnimation : long { None = 5, Automatic = 100 };

struct CellSpec {
  CellStyle style = CellStyle::Default;
  std::string title;
  Font titleFont{17, Weight::Regular};
  Color titleColor = kLabel;
  std::string detail;  // "" leaves the detail label empty
  Font detailFont{12, Weight::Regular};
  Color detailColor = kSecondaryLabel;
  long detailLines = 0;  // 0: as many as needed
  rt::Id image = nullptr;
  double imageCornerRadius = 0;  // with clipsToBounds when non-zero
  Accessory accessory = Accessory::None;
  rt::Id accessoryView = nullptr;
  bool selectionHighlight = true;  // false: UITableViewCellSelectionStyleNone
  bool hasTint = false;
  Color tint;
};

// A new cell (initWithStyle:reuseIdentifier:) laid out as `spec` describes it.
rt::Id makeCell(const CellSpec& spec, const std::string& reuseIdentifier = "");
// A cell the table keeps for reuse under the identifier, or nil.
rt::Id dequeueCell(rt::Id table, const std::string& reuseIdentifier);
// Sets everything `spec` describes on a cell, then lays it out at once.
void configureCell(rt::Id cell, const CellSpec& spec);

// A switch set to `on`; `changed` receives it after each change by the user.
rt::Id makeSwitch(bool on, Color onTint, std::function<void(rt::Id sw)> changed);
bool switchIsOn(rt::Id sw);

// A swipe configuration of one destructive action titled `title`. The
// handler gets the completion to call with whether the action was performed.
using SwipeHandler = std::function<void(std::function<void(bool performed)> completion)>;
rt::Id destructiveSwipe(const std::string& title, SwipeHandler handler);

// Reloads one section, or removes one row, of a table.
void reloadSection(rt::Id table, long section, RowAnimation animation);
void deleteRow(rt::Id table, long section, long row, RowAnimation animation);
// The rows the table shows in a section: its count as of its last update,
// which a row deletion must leave one lower than the data source's new count.
long shownRowCount(rt::Id table, long section);

struct TableLook {
  Color background = kGroupedBackground;
  double separatorInsetLeft = 15;
  double estimatedRowHeight = 44;
  bool automaticRowHeight = true;
};
void styleTable(rt::Id table, const TableLook& look);

// A header of labels centred one under the other with `margin` at both
// sides, as wide as `width`, its height fitted to the labels; installed as
// the table's header view.
struct HeaderLine {
  std::string text;
  Font font;
  Color color;
};
rt::Id setStackedHeader(rt::Id table, double width, double margin,
                        const std::vector<HeaderLine>& lines);

}  // namespace ui
