// Pickers on iOS: a wheel UIDatePicker pinned into an alert's view with
// layout anchors, and a UISearchController whose results updater is a
// trampoline kept alive by the search controller (which holds it weakly).
#include "ui/pickers.hpp"

#import <UIKit/UIKit.h>

#include <utility>

#include "bridge.h"
#include "trampoline.h"

@interface QBSearchUpdater : QBTrampoline <UISearchResultsUpdating>
@end

@implementation QBSearchUpdater
- (void)updateSearchResultsForSearchController:(UISearchController*)searchController {
  [self fire:searchController];
}
@end

namespace ui {
namespace {

UIDatePicker* pickerOf(rt::Id picker) {
  id p = ios::object(picker);
  return [p isKindOfClass:[UIDatePicker class]] ? (UIDatePicker*)p : nil;
}

}  // namespace

rt::Id makeTimePicker(long hour, long minute, const std::string& locale) {
  UIDatePicker* picker = [UIDatePicker new];
  picker.datePickerMode = UIDatePickerModeTime;
  picker.preferredDatePickerStyle = UIDatePickerStyleWheels;
  picker.locale = [NSLocale localeWithLocaleIdentifier:ios::ns(locale)];
  NSDate* now = [NSDate date];
  NSDate* at = [[NSCalendar currentCalendar] dateBySettingHour:hour
                                                        minute:minute
                                                        second:0
                                                        ofDate:now
                                                       options:0];
  picker.date = at ? at : now;
  return ios::handle(picker);
}

void pickerTime(rt::Id picker, long& hour, long& minute) {
  UIDatePicker* p = pickerOf(picker);
  if (!p) return;
  NSDateComponents* c =
      [[NSCalendar currentCalendar] components:NSCalendarUnitHour | NSCalendarUnitMinute
                                      fromDate:p.date];
  hour = c.hour;
  minute = c.minute;
}

void addPickerToAlert(rt::Id alert, rt::Id picker, const PickerLayout& layout) {
  UIView* view = ((UIViewController*)ios::object(alert)).view;
  UIDatePicker* p = pickerOf(picker);
  p.translatesAutoresizingMaskIntoConstraints = NO;
  [view addSubview:p];
  [NSLayoutConstraint activateConstraints:@[
    [p.centerXAnchor constraintEqualToAnchor:view.centerXAnchor],
    [p.topAnchor constraintEqualToAnchor:view.topAnchor constant:layout.top],
    [p.heightAnchor constraintEqualToConstant:layout.height],
    [view.heightAnchor constraintGreaterThanOrEqualToConstant:layout.minAlertHeight],
  ]];
}

rt::Id installSearch(rt::Id controller, const SearchSpec& spec,
                     std::function<void(const std::string& text)> update) {
  UISearchController* search = [[UISearchController alloc] initWithSearchResultsController:nil];
  QBSearchUpdater* updater =
      ios::trampoline<QBSearchUpdater>([update = std::move(update)](id sender) {
        if (update) update(ios::utf8(((UISearchController*)sender).searchBar.text));
      });
  ios::keepWith(search, updater);
  search.searchResultsUpdater = updater;
  search.obscuresBackgroundDuringPresentation = spec.obscuresBackground;
  search.searchBar.placeholder = ios::ns(spec.placeholder);
  UIViewController* c = (UIViewController*)ios::object(controller);
  c.navigationItem.searchController = search;
  c.navigationItem.hidesSearchBarWhenScrolling = spec.hidesWhenScrolling;
  c.definesPresentationContext = YES;
  return ios::handle(search);
}

}  // namespace ui
