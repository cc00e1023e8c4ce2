// The simulated state of alerts, gesture recognizers and the biometric
// prompt, and the user's actions on them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "rt/types.hpp"
#include "ui/alerts.hpp"

namespace sim {

class Runtime;

struct AlertAction {
  std::string title;
  ui::ActionStyle style;
  std::function<void()> handler;
};

struct AlertState {
  std::string title, message;
  std::vector<rt::Id> textFields;
  std::vector<ui::TextFieldSpec> fieldSpecs;
  std::vector<AlertAction> actions;
  bool actionTaken = false;
  std::function<void()> onGoneWithoutAction;
};

struct GestureState {
  double minimumPressDuration = 0.5;
  bool cancelsTouchesInView = true;
  long state = 0;
  std::function<void(rt::Id)> action;
};

void registerInteraction(Runtime& rtm);
AlertState* alertState(rt::Id alert);
GestureState* gestureState(rt::Id recognizer);
// The state of an alert controller / a recognizer, made on first use.
AlertState& alertOf(rt::Id alert);
GestureState& gestureOf(rt::Id recognizer);
// The user presses the action titled `title`: the alert is dismissed, then its
// handler runs. False when the alert has no such action.
bool pressAlertAction(rt::Id alert, const std::string& title);
void typeIntoAlert(rt::Id alert, const std::string& text);
// Dismisses a presented controller, and first whatever is presented above it.
void dismissPresented(rt::Id controller);
// The user drags a presented page sheet down: it is dismissed, and once the
// sheet has gone its presentation delegate hears of it. False when `presented`
// is no sheet on screen.
bool dragAway(rt::Id presented);

}  // namespace sim
