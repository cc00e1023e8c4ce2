// Alerts and modal presentation: what the password check puts on screen.
// On iOS: UIAlertController alertControllerWithTitle:message:preferredStyle:
// (alert style), addTextFieldWithConfigurationHandler: (secureTextEntry,
// placeholder, clearButtonMode), UIAlertAction actionWithTitle:style:handler:,
// presentViewController:animated:completion: and dismissViewControllerAnimated:.
#pragma once

#include <functional>
#include <string>

#include "rt/types.hpp"

namespace ui {

enum class ActionStyle { Default, Cancel, Destructive };

struct TextFieldSpec {
  std::string placeholder;
  bool secure = false;
  bool clearButtonWhileEditing = false;
};

// An empty title or message is nil (no line at all, as UIKit lays it out),
// never an empty string.
rt::Id makeAlert(const std::string& title, const std::string& message);
void addTextField(rt::Id alert, const TextFieldSpec& spec);
// The handler runs once the alert has been dismissed, as UIKit does.
void addAction(rt::Id alert, const std::string& title, ActionStyle style,
               std::function<void()> handler);
// The text of the alert's text field at `index` ("" when it has none or is nil).
std::string textFieldText(rt::Id alert, long index);

// Presents `controller` modally on `presenter`. Raises as UIKit would for a
// nil controller; refuses, without raising, while the presenter is already
// presenting. True when `controller` is on screen afterwards (on iOS: its
// presentingViewController is set once the call returns).
bool present(rt::Id presenter, rt::Id controller, bool animated);
// Runs `handler` once if the alert leaves the screen without any of its
// buttons (the host dismissing what is presented). On iOS: the alert's
// viewDidDisappear: with no action handler having run.
void onDismissedWithoutAction(rt::Id alert, std::function<void()> handler);

}  // namespace ui
