// The classes behind what the user interacts with: alert controllers and
// their text fields, gesture recognizers, dismissal of what a controller
// presents, and the user's actions on an alert. The simulator's commands
// (type, press) act through these; ui/alerts, ui/feedback and ui/gestures
// make them for the system.
#include <cmath>
#include <utility>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/alerts.hpp"
#include "ui/feedback.hpp"
#include "ui/gestures.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

Id textFieldText(Id self, SEL) { return rt::str(viewState(self)->text); }
void setTextFieldText(Id self, SEL, Id t) { viewState(self)->text = rt::asString(t).value_or(""); }
long recognizerState(Id self, SEL) { return gestureOf(self).state; }
// Nil for an alert made without a title or a message.
Id alertTitle(Id self, SEL) {
  const AlertState& a = alertOf(self);
  return a.title.empty() ? nullptr : rt::str(a.title);
}
Id alertMessage(Id self, SEL) {
  const AlertState& a = alertOf(self);
  return a.message.empty() ? nullptr : rt::str(a.message);
}

}  // namespace

AlertState& alertOf(Id alert) {
  std::shared_ptr<AlertState>& a = controllerState(alert)->alert;
  if (!a) a = std::make_shared<AlertState>();
  return *a;
}

GestureState& gestureOf(Id g) {
  if (!native<GestureState>(g)) g->native = GestureState{};
  return *native<GestureState>(g);
}

void registerInteraction(Runtime&) {
  ClassBuilder("UIAlertController", "UIViewController")
      .method("title", alertTitle)
      .method("message", alertMessage)
      .build();
  ClassBuilder("UIAlertAction").build();
  ClassBuilder("UITextField", "UIView")
      .method("text", textFieldText)
      .method("setText:", setTextFieldText)
      .build();
  ClassBuilder("UIGestureRecognizer").method("state", recognizerState).build();
  ClassBuilder("UILongPressGestureRecognizer", "UIGestureRecognizer").build();
  ClassBuilder("UITapGestureRecognizer", "UIGestureRecognizer").build();
}

AlertState* alertState(Id alert) {
  return alert && rt::isKindOf(alert, "UIAlertController") ? &alertOf(alert) : nullptr;
}

GestureState* gestureState(Id recognizer) {
  return recognizer && rt::isKindOf(recognizer, "UIGestureRecognizer") ? &gestureOf(recognizer)
                                                                       : nullptr;
}

namespace {

// Whatever the controller or a controller it contains presents goes first,
// as UIKit takes the whole stack above a dismissed controller with it.
void dismissPresentedAbove(Id controller) {
  ControllerState& c = *controllerState(controller);
  if (c.presented) dismissPresented(c.presented);
  for (Id child : std::vector<Id>(c.children)) dismissPresentedAbove(child);
}

}  // namespace

void dismissPresented(Id controller) {
  dismissPresentedAbove(controller);
  ControllerState& c = *controllerState(controller);
  if (Id presenter = c.presenting) {
    controllerState(presenter)->presented = nullptr;
    c.presenting = nullptr;
    disappear(controller);
    AlertState* a = alertState(controller);
    if (a && !a->actionTaken && a->onGoneWithoutAction)
      std::exchange(a->onGoneWithoutAction, nullptr)();
    sim::autorelease(controller);  // the presenter's hold, kept to the end of the turn
  }
}

bool pressAlertAction(Id alert, const std::string& title) {
  AlertState* a = alertState(alert);
  if (!a) return false;
  for (const AlertAction& action : a->actions) {
    if (action.title != title) continue;
    std::function<void()> handler = action.handler;
    a->actionTaken = true;
    dismissPresented(alert);
    if (handler) handler();
    return true;
  }
  return false;
}

void typeIntoAlert(Id alert, const std::string& text) {
  AlertState* a = alertState(alert);
  if (!a || a->textFields.empty()) rt::raise("QBSimNoTextField", "the dialog has no text field");
  viewState(a->textFields.front())->text = text;
}

}  // namespace sim
