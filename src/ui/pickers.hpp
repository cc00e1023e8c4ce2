// The pickers of the system's dialogs and lists: a time-of-day wheel inside
// an alert, and a search field in a navigation bar. On iOS: UIDatePicker
// (datePickerMode UIDatePickerModeTime, preferredDatePickerStyle
// UIDatePickerStyleWheels, locale, date from NSCalendar
// dateBySettingHour:minute:second:ofDate:options:, read back with
// components:fromDate:), added to the alert's view with NSLayoutConstraint
// anchors; UISearchController initWithSearchResultsController:nil,
// searchResultsUpdater (a trampoline holding the block),
// obscuresBackgroundDuringPresentation, searchBar.placeholder and text,
// navigationItem.searchController, hidesSearchBarWhenScrolling,
// definesPresentationContext.
#pragma once

#include <functional>
#include <string>

#include "rt/types.hpp"

namespace ui {

// A wheel time picker in the locale, set to today at hour:minute (now when
// that date cannot be formed).
rt::Id makeTimePicker(long hour, long minute, const std::string& locale);
// The hour and minute of the picker's date in the current calendar.
void pickerTime(rt::Id picker, long& hour, long& minute);

struct PickerLayout {
  double top = 56;  // below the top of the alert's view
  double height = 160;
  // The alert's view at least this high: the wheel, a margin and the button
  // row, so no gap is left between the wheel and the buttons.
  double minAlertHeight = 56 + 160 + 8 + 44;
};
// Adds the picker to the alert's view, horizontally centred.
void addPickerToAlert(rt::Id alert, rt::Id picker, const PickerLayout& layout);

struct SearchSpec {
  std::string placeholder;
  bool obscuresBackground = false;
  bool hidesWhenScrolling = false;
};
// Installs a search controller on the controller's navigation item; `update`
// receives the search text on every change. Returns the search controller.
rt::Id installSearch(rt::Id controller, const SearchSpec& spec,
                     std::function<void(const std::string& text)> update);

}  // namespace ui
