// Navigation, sheets and bar buttons of the system's own screens. On iOS:
// UINavigationController initWithRootViewController:, modalPresentationStyle
// (UIModalPresentationPageSheet), sheetPresentationController (iOS 15: detents
// @[largeDetent], prefersGrabberVisible), navigationBar.prefersLargeTitles and
// tintColor, presentViewController:animated:completion:,
// dismissViewControllerAnimated:completion:, UIBarButtonItem
// initWithTitle:style:target:action: (through a trampoline holding the block)
// as navigationItem.leftBarButtonItem, presentationController.delegate
// (UIAdaptivePresentationControllerDelegate presentationControllerDidDismiss:), view.backgroundColor, and
// [UIScreen mainScreen] bounds and scale.
#pragma once

#include <functional>
#include <string>

#include "rt/types.hpp"
#include "ui/drawing.hpp"

namespace ui {

struct SheetSpec {
  bool largeDetentOnly = true;
  bool grabberVisible = true;
  bool prefersLargeTitles = false;
};
// Presents `navigation` on `presenter` as a page sheet. Raises as UIKit does
// for a nil controller.
void presentPageSheet(rt::Id presenter, rt::Id navigation, const SheetSpec& spec, bool animated);
// Dismisses what `controller` presents, or `controller` itself when it is
// presented; `completion` runs once the dismissal has finished.
void dismiss(rt::Id controller, bool animated, std::function<void()> completion);
// Runs `handler` once the user has dragged the presented sheet away, after the
// dismissal has finished; never when code dismisses it. On iOS: the
// presentation controller's delegate (held weakly by UIKit, so the object is
// kept with the sheet) answering presentationControllerDidDismiss:.
void onDraggedAway(rt::Id presented, std::function<void()> handler);

enum class BarButtonStyle : long { Plain = 0, Done = 2 };
void setLeftBarButton(rt::Id controller, const std::string& title, BarButtonStyle style,
                      std::function<void()> action);
void setNavigationTint(rt::Id navigation, Color tint);
void setViewBackground(rt::Id controller, Color color);

double screenWidth();
double screenScale();

}  // namespace ui
