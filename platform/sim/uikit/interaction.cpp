// What the user interacts with: alerts with text fields and actions, modal
// presentation, long-press recognizers, haptics and the biometric prompt.
// The simulator's commands (type, press, longpress, biometric) act on these.
#include <cmath>
#include <utility>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/class_builder.hpp"
#include "sim/lifetimes.hpp"
#include "sim/process.hpp"
#include "sim/runtime.hpp"
#include "sim/uikit/interaction.hpp"
#include "sim/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/alerts.hpp"
#include "ui/feedback.hpp"
#include "ui/gestures.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

Id newObject(const char* cls) { return rt::send<Id>(rt::getClass(cls), "new"); }

AlertState& alertOf(Id alert) {
  std::shared_ptr<AlertState>& a = controllerState(alert)->alert;
  if (!a) a = std::make_shared<AlertState>();
  return *a;
}

GestureState& gestureOf(Id g) {
  if (!native<GestureState>(g)) g->native = GestureState{};
  return *native<GestureState>(g);
}

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

void impact(ImpactStyle style) {
  sim::currentProcess().platform().haptics.push_back("impact " + std::to_string(int(style)));
}

bool canEvaluateBiometrics() {
  return sim::currentProcess().device().biometrics != sim::Biometrics::None;
}

void evaluateBiometrics(const BiometricRequest& request, std::function<void(bool success)> reply) {
  sim::PlatformState& p = sim::currentProcess().platform();
  if (!canEvaluateBiometrics()) {
    sys::async([reply] { reply(false); });
    return;
  }
  p.biometricReason = request.reason;
  p.biometricFallbackTitle = request.fallbackTitle;
  p.biometricReply = std::move(reply);
  // The system's sheet takes the screen a moment later: the app resigns active.
  sys::async([] { sim::currentProcess().systemPromptAppeared(); });
}

rt::Id addLongPress(rt::Id view, double minimumPressDuration, bool cancelsTouchesInView,
                    std::function<void(rt::Id recognizer)> action) {
  rt::Id g = sim::newObject("UILongPressGestureRecognizer");
  sim::GestureState& s = sim::gestureOf(g);
  s.minimumPressDuration = minimumPressDuration;
  s.cancelsTouchesInView = cancelsTouchesInView;
  s.action = std::move(action);
  rt::send<void>(view, "addGestureRecognizer:", g);
  return sim::autorelease(g);  // the view owns it
}

GestureState gestureState(rt::Id recognizer) {
  sim::GestureState* s = sim::gestureState(recognizer);
  return static_cast<GestureState>(s ? s->state : 0);
}

}  // namespace ui
