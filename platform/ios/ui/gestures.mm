// Gesture recognizers on iOS. A recognizer does not retain its target, so
// the small target object that holds the system's function is attached to
// the recognizer itself and lives exactly as long.
#include "ui/gestures.hpp"

#import <UIKit/UIKit.h>
#include <objc/runtime.h>

#include <utility>

#include "bridge.h"

@interface QBGestureTarget : NSObject {
 @public
  std::function<void(rt::Id)> action;
}
- (void)recognizerChanged:(UIGestureRecognizer*)recognizer;
@end

@implementation QBGestureTarget
- (void)recognizerChanged:(UIGestureRecognizer*)recognizer {
  ios::shielded("gesture", [&] {
    if (action) action(ios::handle(recognizer));
  });
}
@end

namespace ui {
namespace {
char kTargetKey;
}

rt::Id addLongPress(rt::Id view, double minimumPressDuration, bool cancelsTouchesInView,
                    std::function<void(rt::Id recognizer)> action) {
  QBGestureTarget* target = [QBGestureTarget new];
  target->action = std::move(action);
  UILongPressGestureRecognizer* g = [[UILongPressGestureRecognizer alloc] initWithTarget:target
                                                                                   action:@selector(recognizerChanged:)];
  g.minimumPressDuration = minimumPressDuration;
  g.cancelsTouchesInView = cancelsTouchesInView;
  objc_setAssociatedObject(g, &kTargetKey, target, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
  ios::translating([&] { [(UIView*)ios::object(view) addGestureRecognizer:g]; });
  return ios::handle(g);
}

GestureState gestureState(rt::Id recognizer) {
  id r = ios::object(recognizer);
  if (!r || ![r isKindOfClass:[UIGestureRecognizer class]]) return GestureState::Possible;
  return static_cast<GestureState>([(UIGestureRecognizer*)r state]);
}

}  // namespace ui
