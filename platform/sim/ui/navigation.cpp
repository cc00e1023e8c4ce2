// Navigation on the simulated UIKit: page sheets and their dismissal (the
// completion runs when the sheet's animation would end), a sheet dragged
// away, bar buttons, tints and backgrounds, and the screen's size.
#include "ui/navigation.hpp"

#include <utility>

#include "rt/exception.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/alerts.hpp"

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

}  // namespace ui
