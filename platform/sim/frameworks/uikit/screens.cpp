// What page sheets, pickers and taps rest on: a view's origin in its tree,
// the presented controller a screen is in, the time wheel an alert holds, and
// the classes UIDatePicker and UISearchController. ui/navigation, ui/pickers
// and ui/gestures build on these.
#include <cmath>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/gestures.hpp"
#include "ui/navigation.hpp"
#include "ui/pickers.hpp"

namespace sim {

using rt::Id;

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
