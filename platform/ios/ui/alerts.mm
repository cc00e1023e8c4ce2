// Alerts on iOS: UIAlertController with its text fields and actions, and
// modal presentation. To learn that an alert left the screen without any of
// its buttons, an alert that asks for it is moved into a subclass (made once,
// at run time) whose viewDidDisappear: reports to the watch attached to it.
#include "ui/alerts.hpp"

#import <UIKit/UIKit.h>
#include <dispatch/dispatch.h>
#include <objc/runtime.h>

#include <utility>

#include "bridge.h"

// What an alert remembers about itself: whether one of its actions ran, and
// what to do if it disappears without one.
@interface QBAlertWatch : NSObject {
 @public
  bool actionTaken;
  std::function<void()> onGoneWithoutAction;
}
@end

@implementation QBAlertWatch
@end

namespace ui {
namespace {

char kWatchKey;

QBAlertWatch* watchOf(UIAlertController* alert) {
  QBAlertWatch* w = objc_getAssociatedObject(alert, &kWatchKey);
  if (!w) {
    w = [QBAlertWatch new];
    objc_setAssociatedObject(alert, &kWatchKey, w, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
  }
  return w;
}

UIAlertController* alertOf(rt::Id alert) {
  id a = ios::object(alert);
  return [a isKindOfClass:[UIAlertController class]] ? (UIAlertController*)a : nil;
}

// UIKit runs an action's handler after the alert has gone, so the check waits
// one turn of the main queue for a handler that is on its way.
void watchedDidDisappear(id self, SEL cmd, BOOL animated) {
  auto inherited = reinterpret_cast<void (*)(id, SEL, BOOL)>(
      class_getMethodImplementation([UIAlertController class], cmd));
  inherited(self, cmd, animated);
  QBAlertWatch* w = objc_getAssociatedObject(self, &kWatchKey);
  if (!w) return;
  dispatch_async(dispatch_get_main_queue(), ^{
    if (w->actionTaken || !w->onGoneWithoutAction) return;
    std::function<void()> handler = std::exchange(w->onGoneWithoutAction, nullptr);
    ios::shielded("alert dismissal", handler);
  });
}

Class watchedAlertClass() {
  static Class watched = [] {
    const char* name = "QBWatchedAlertController";
    Class c = objc_allocateClassPair([UIAlertController class], name, 0);
    if (!c) return objc_lookUpClass(name);  // a second copy of the library made it already
    class_addMethod(c, @selector(viewDidDisappear:), reinterpret_cast<IMP>(watchedDidDisappear),
                    "v@:B");
    objc_registerClassPair(c);
    return c;
  }();
  return watched;
}

}  // namespace

rt::Id makeAlert(const std::string& title, const std::string& message) {
  return ios::handle([UIAlertController
      alertControllerWithTitle:title.empty() ? nil : ios::ns(title)
                       message:message.empty() ? nil : ios::ns(message)
                preferredStyle:UIAlertControllerStyleAlert]);
}

void addTextField(rt::Id alert, const TextFieldSpec& spec) {
  UIAlertController* a = alertOf(alert);
  NSString* placeholder = ios::ns(spec.placeholder);
  bool secure = spec.secure;
  UITextFieldViewMode clear =
      spec.clearButtonWhileEditing ? UITextFieldViewModeWhileEditing : UITextFieldViewModeNever;
  [a addTextFieldWithConfigurationHandler:^(UITextField* field) {
    field.placeholder = placeholder;
    field.secureTextEntry = secure;
    field.clearButtonMode = clear;
  }];
}

void addAction(rt::Id alert, const std::string& title, ActionStyle style,
               std::function<void()> handler) {
  UIAlertController* a = alertOf(alert);
  if (!a) return;
  QBAlertWatch* w = watchOf(a);
  UIAlertAction* action = [UIAlertAction actionWithTitle:ios::ns(title)
                                                   style:static_cast<UIAlertActionStyle>(style)
                                                 handler:^(UIAlertAction*) {
                                                   w->actionTaken = true;
                                                   if (handler)
                                                     ios::shielded("alert action", handler);
                                                 }];
  [a addAction:action];
}

std::string textFieldText(rt::Id alert, long index) {
  UIAlertController* a = alertOf(alert);
  NSArray* fields = a.textFields;
  if (!a || index < 0 || NSUInteger(index) >= fields.count) return "";
  UITextField* field = [fields objectAtIndex:NSUInteger(index)];
  return ios::utf8(field.text);
}

bool present(rt::Id presenter, rt::Id controller, bool animated) {
  if (!presenter) return false;
  if (!controller)
    rt::raise("NSInvalidArgumentException",
              "Application tried to present a nil modal view controller");
  UIViewController* target = (UIViewController*)ios::object(presenter);
  UIViewController* shown = (UIViewController*)ios::object(controller);
  if (target.presentedViewController) return false;
  ios::translating([&] { [target presentViewController:shown animated:animated completion:nil]; });
  return shown.presentingViewController != nil;
}

void onDismissedWithoutAction(rt::Id alert, std::function<void()> handler) {
  UIAlertController* a = alertOf(alert);
  if (!a) return;
  watchOf(a)->onGoneWithoutAction = std::move(handler);
  if (Class watched = watchedAlertClass()) object_setClass(a, watched);
}

}  // namespace ui
