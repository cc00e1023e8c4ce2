// The layout pass of the simulated UIKit: where the bars, a table's headers,
// rows and footers, and an alert's parts sit on a 390 × 844 point screen.
// Frames are set on the views they belong to (the navigation bar, the table,
// each cell, the alert's view) and returned for whoever draws them. Text is
// measured by the caller's function, so the layout fits the font drawn with.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "rt/geometry.hpp"
#include "rt/types.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "ui/drawing.hpp"

namespace sim {

inline constexpr double kScreenWidth = 390, kScreenHeight = 844;
inline constexpr double kStatusBarHeight = 47, kNavBarHeight = 44, kTabBarHeight = 83;
inline constexpr double kSearchBarHeight = 52;

// The height `text` takes in `font` wrapped to `width` points.
using MeasureText =
    std::function<double(const std::string& text, const ui::Font& font, double width)>;

struct RowFrame {
  ShownRow row;
  rt::CGRect frame;      // the cell's frame in the table
  rt::CGRect accessory;  // where its checkmark, chevron or switch sits
  bool firstInGroup = false, lastInGroup = false;
};
struct SectionFrame {
  std::string header, footer;
  rt::CGRect headerFrame, footerFrame;
  rt::CGRect group;  // the rounded group of an inset-grouped table
  std::vector<RowFrame> rows;
};
struct TableFrame {
  bool insetGrouped = false;
  double headerViewHeight = 0;  // the table's own header view above section 0
  std::vector<SectionFrame> sections;
};

// Lays the table's rows out in `frame`, stacked by their heights from
// `topInset` down (the bars over the table): a table view controller's table
// as its data source answers now, any other table as it showed at its last
// reload. Frames are in the table's coordinates.
TableFrame layoutTable(rt::Id table, rt::CGRect frame, double topInset, const MeasureText& measure);

struct AlertFrame {
  rt::CGRect box;  // centred on the screen
  rt::CGRect title, message;
  std::vector<rt::CGRect> fields;
  rt::CGRect picker;                // empty without a time wheel
  std::vector<rt::CGRect> buttons;  // side by side for two, stacked otherwise
};
AlertFrame layoutAlert(rt::Id alert, const MeasureText& measure);

}  // namespace sim
