// Alerts on the simulated UIKit: an alert controller with its text fields and
// actions, and modal presentation, refused as UIKit refuses it (a nil
// controller raises; a presenter already presenting, or out of any window,
// presents nothing).
#include "ui/alerts.hpp"

#include <utility>

#include "rt/exception.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/runtime/lifetimes.hpp"

namespace ui {

// Autoreleased, as alertControllerWithTitle:message:preferredStyle: returns it.
rt::Id makeAlert(const std::string& title, const std::string& message) {
  rt::Id alert = sim::autorelease(sim::newObject("UIAlertController"));
  sim::AlertState& a = sim::alertOf(alert);
  a.title = title;
  a.message = message;
  return alert;
}

void addTextField(rt::Id alert, const TextFieldSpec& spec) {
  rt::Id field = sim::newObject("UITextField");
  sim::AlertState& a = sim::alertOf(alert);
  a.textFields.push_back(field);
  a.fieldSpecs.push_back(spec);
}

void addAction(rt::Id alert, const std::string& title, ActionStyle style,
               std::function<void()> handler) {
  sim::alertOf(alert).actions.push_back({title, style, std::move(handler)});
}

std::string textFieldText(rt::Id alert, long index) {
  sim::AlertState* a = sim::alertState(alert);
  if (!a || index < 0 || index >= long(a->textFields.size())) return "";
  return sim::viewState(a->textFields[std::size_t(index)])->text;
}

bool present(rt::Id presenter, rt::Id controller, bool) {
  if (!presenter) return false;
  if (!controller)
    rt::raise("NSInvalidArgumentException",
              "Application tried to present a nil modal view controller");
  // UIKit refuses to present on a controller that is already presenting, or
  // whose screen is in no window (a closed panel, a popped page).
  const sim::ControllerState& target = *sim::controllerState(presenter);
  if (target.presented || target.inTransition || !sim::inWindowHierarchy(presenter)) return false;
  sim::present(presenter, controller);
  return true;
}

void onDismissedWithoutAction(rt::Id alert, std::function<void()> handler) {
  if (sim::AlertState* a = sim::alertState(alert)) a->onGoneWithoutAction = std::move(handler);
}

}  // namespace ui
