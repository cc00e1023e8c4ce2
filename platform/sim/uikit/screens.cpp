// Page sheets, dismissal with completion, bar buttons, search controllers,
// the time wheel of an alert, and tap recognizers with a location.
#include <cmath>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/class_builder.hpp"
#include "sim/lifetimes.hpp"
#include "sim/uikit/interaction.hpp"
#include "sim/uikit/tables.hpp"
#include "sim/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/gestures.hpp"
#include "ui/navigation.hpp"
#include "ui/pickers.hpp"

namespace sim {
namespace {

using rt::Id;

Id newObject(const char* cls) { return rt::send<Id>(rt::getClass(cls), "new"); }

// How long UIKit's sheet and alert transitions take.
constexpr double kSheetAnimation_s = 0.3;

// The view's origin in the coordinates of the root of its tree.
rt::CGPoint absoluteOrigin(Id view) {
  rt::CGPoint p{0, 0};
  for (Id v = view; v; v = viewState(v)->superview) {
    p.x += viewState(v)->frame.origin.x;
    p.y += viewState(v)->frame.origin.y;
  }
  return p;
}

Id presentedRoot(Id controller) {
  for (Id c = controller; c; c = controllerState(c)->parent)
    if (controllerState(c)->presenting) return c;
  return nullptr;
}

}  // namespace

rt::Id alertTimePicker(rt::Id alert) {
  if (!alertState(alert)) return nullptr;
  for (Id sub : viewState(rt::send<Id>(alert, "view"))->subviews)
    if (rt::isKindOf(sub, "UIDatePicker")) return sub;
  return nullptr;
}

void setPickerTime(rt::Id picker, long hour, long minute) {
  DatePickerState& p = extra<DatePickerState>(picker);
  p.hour = hour;
  p.minute = minute;
}

bool dragAway(rt::Id presented) {
  ScreenState* s = findExtra<ScreenState>(presented);
  // Only a sheet can be dragged; a full-screen presentation has nothing to drag.
  if (!s || s->modalPresentationStyle != 1 || !controllerState(presented)->presenting) return false;
  dismissPresented(presented);
  if (s->draggedAway) sys::after(kSheetAnimation_s, s->draggedAway);
  return true;
}

bool pressLeftBarButton(rt::Id controller) {
  ScreenState* s = findExtra<ScreenState>(controller);
  if (!s || !s->leftAction) return false;
  auto action = s->leftAction;
  action();
  return true;
}

bool typeSearch(rt::Id controller, const std::string& text) {
  ScreenState* s = findExtra<ScreenState>(controller);
  SearchState* search = s ? findExtra<SearchState>(s->searchController) : nullptr;
  if (!search) return false;
  search->text = text;
  if (auto update = search->update) update(text);
  return true;
}

void registerScreens() {
  ClassBuilder("UIDatePicker", "UIControl").build();
  ClassBuilder("UISearchController", "UIViewController").build();
}

}  // namespace sim

namespace ui {

void presentPageSheet(rt::Id presenter, rt::Id navigation, const SheetSpec& spec, bool animated) {
  if (!navigation)
    rt::raise("NSInvalidArgumentException",
              "Application tried to present a nil modal view controller");
  sim::ScreenState& s = sim::extra<sim::ScreenState>(navigation);
  s.modalPresentationStyle = 1;  // UIModalPresentationPageSheet
  s.largeDetentOnly = spec.largeDetentOnly;
  s.grabberVisible = spec.grabberVisible;
  s.prefersLargeTitles = spec.prefersLargeTitles;
  present(presenter, navigation, animated);
  if (sim::controllerState(navigation)->presenting != presenter) return;
  // Showing a navigation controller loads and shows its top screen.
  if (rt::Id top = rt::send<rt::Id>(navigation, "topViewController")) sim::appear(top);
}

void dismiss(rt::Id controller, bool animated, std::function<void()> completion) {
  rt::Id target = sim::controllerState(controller)->presented;
  if (!target) target = sim::presentedRoot(controller);
  if (target) sim::dismissPresented(target);
  if (completion) sys::after(animated ? sim::kSheetAnimation_s : 0, std::move(completion));
}

void onDraggedAway(rt::Id presented, std::function<void()> handler) {
  sim::extra<sim::ScreenState>(presented).draggedAway = std::move(handler);
}

void setLeftBarButton(rt::Id controller, const std::string& title, BarButtonStyle style,
                      std::function<void()> action) {
  sim::ScreenState& s = sim::extra<sim::ScreenState>(controller);
  s.leftTitle = title;
  s.leftStyle = long(style);
  s.leftAction = std::move(action);
}

void setNavigationTint(rt::Id navigation, Color tint) {
  if (navigation) sim::extra<sim::ScreenState>(navigation).tint = tint;
}

void setViewBackground(rt::Id controller, Color color) {
  sim::extra<sim::ScreenState>(controller).background = color;
}

double screenWidth() { return 390; }
double screenScale() { return 3; }

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

rt::Id addTap(rt::Id view, bool cancelsTouchesInView,
              std::function<void(rt::Id recognizer)> action) {
  rt::Id g = sim::newObject("UITapGestureRecognizer");
  sim::GestureState& s = *sim::gestureState(g);
  s.cancelsTouchesInView = cancelsTouchesInView;
  s.action = std::move(action);
  rt::send<void>(view, "addGestureRecognizer:", g);
  return sim::autorelease(g);  // the view owns it
}

rt::CGPoint locationInView(rt::Id recognizer, rt::Id view) {
  sim::TapState* t = sim::findExtra<sim::TapState>(recognizer);
  if (!t || !t->touched || !view) return {0, 0};
  rt::CGPoint from = sim::absoluteOrigin(t->touched), to = sim::absoluteOrigin(view);
  return {t->point.x + from.x - to.x, t->point.y + from.y - to.y};
}

}  // namespace ui
