// Pickers on the simulated UIKit: the time wheel set into an alert's view,
// and the search controller installed on a screen's navigation item.
#include "ui/pickers.hpp"

#include <utility>

#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/runtime/lifetimes.hpp"

namespace ui {

rt::Id makeTimePicker(long hour, long minute, const std::string& locale) {
  rt::Id picker = sim::newObject("UIDatePicker");
  sim::DatePickerState& p = sim::extra<sim::DatePickerState>(picker);
  p.hour = hour;
  p.minute = minute;
  p.locale = locale;
  return sim::autorelease(picker);  // the alert's view takes it
}

void pickerTime(rt::Id picker, long& hour, long& minute) {
  sim::DatePickerState& p = sim::extra<sim::DatePickerState>(picker);
  hour = p.hour;
  minute = p.minute;
}

void addPickerToAlert(rt::Id alert, rt::Id picker, const PickerLayout& layout) {
  sim::extra<sim::DatePickerState>(picker).layout = layout;
  rt::Id view = rt::send<rt::Id>(alert, "view");
  rt::send<void>(view, "addSubview:", picker);
  sim::viewState(picker)->frame = rt::CGRect{{(270 - 320) / 2.0, layout.top}, {320, layout.height}};
}

rt::Id installSearch(rt::Id controller, const SearchSpec& spec,
                     std::function<void(const std::string&)> update) {
  rt::Id search = sim::newObject("UISearchController");
  sim::SearchState& s = sim::extra<sim::SearchState>(search);
  s.spec = spec;
  s.update = std::move(update);
  sim::extra<sim::ScreenState>(controller).searchController = search;
  // The navigation item holds it for as long as its controller lives.
  static const char kOwnedSearch = 0;
  rt::setAssociatedObject(controller, &kOwnedSearch, search);
  return sim::autorelease(search);
}

}  // namespace ui
