// Sheets, navigation and bar buttons on iOS: a page sheet (with iOS 15's
// sheet controller where there is one), UIKit's own dismissal, and a bar
// button whose target is a trampoline kept alive by the item; the sheet's
// presentation delegate, likewise kept alive by the sheet.
#include "ui/navigation.hpp"

#import <UIKit/UIKit.h>

#include <utility>

#include "bridge.h"
#include "trampoline.h"
#include "ui/alerts.hpp"
#include "uikit_values.h"

@interface QBSheetWatch : QBTrampoline <UIAdaptivePresentationControllerDelegate>
@end

@implementation QBSheetWatch
- (void)presentationControllerDidDismiss:(UIPresentationController*)presentationController {
  [self fire:presentationController];
}
@end

namespace ui {
namespace {

UIViewController* controllerOf(rt::Id controller) {
  return (UIViewController*)ios::object(controller);
}

}  // namespace

void presentPageSheet(rt::Id presenter, rt::Id navigation, const SheetSpec& spec, bool animated) {
  if (!navigation)
    rt::raise("NSInvalidArgumentException",
              "Application tried to present a nil modal view controller");
  UIViewController* sheet = controllerOf(navigation);
  sheet.modalPresentationStyle = UIModalPresentationPageSheet;
  if (@available(iOS 15.0, *)) {
    UISheetPresentationController* controller = sheet.sheetPresentationController;
    if (spec.largeDetentOnly)
      controller.detents = @[ [UISheetPresentationControllerDetent largeDetent] ];
    controller.prefersGrabberVisible = spec.grabberVisible;
  }
  if ([sheet isKindOfClass:[UINavigationController class]])
    ((UINavigationController*)sheet).navigationBar.prefersLargeTitles = spec.prefersLargeTitles;
  present(presenter, navigation, animated);
}

// UIKit dismisses what the controller presents, or the controller itself
// when it presents nothing.
void dismiss(rt::Id controller, bool animated, std::function<void()> completion) {
  ios::translating([&] {
    [controllerOf(controller) dismissViewControllerAnimated:animated
                                                 completion:^{
                                                   if (completion)
                                                     ios::shielded("dismissal", completion);
                                                 }];
  });
}

void onDraggedAway(rt::Id presented, std::function<void()> handler) {
  UIViewController* sheet = controllerOf(presented);
  QBSheetWatch* watch = ios::trampoline<QBSheetWatch>([handler = std::move(handler)](id) {
    if (handler) handler();
  });
  ios::keepWith(sheet, watch);
  sheet.presentationController.delegate = watch;
}

void setLeftBarButton(rt::Id controller, const std::string& title, BarButtonStyle style,
                      std::function<void()> action) {
  QBTrampoline* target = ios::trampoline([action = std::move(action)](id) {
    if (action) action();
  });
  UIBarButtonItem* item =
      [[UIBarButtonItem alloc] initWithTitle:ios::ns(title)
                                       style:static_cast<UIBarButtonItemStyle>(style)
                                      target:target
                                      action:@selector(fire:)];
  ios::keepWith(item, target);
  controllerOf(controller).navigationItem.leftBarButtonItem = item;
}

void setNavigationTint(rt::Id navigation, Color tint) {
  ((UINavigationController*)ios::object(navigation)).navigationBar.tintColor = ios::color(tint);
}

void setViewBackground(rt::Id controller, Color color) {
  controllerOf(controller).view.backgroundColor = ios::color(color);
}

double screenWidth() { return UIScreen.mainScreen.bounds.size.width; }
double screenScale() { return UIScreen.mainScreen.scale; }

}  // namespace ui
