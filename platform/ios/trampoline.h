// Target-action without a class per use: UIKit keeps a control's,
// recognizer's or bar button's target (and a search controller's updater)
// weakly, so the small object that holds the system's function is attached
// to its owner and lives exactly as long.
#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <functional>
#include <utility>

@interface QBTrampoline : NSObject {
 @public
  std::function<void(id sender)> action;
}
// Runs the action behind the exception boundary.
- (void)fire:(id)sender;
@end

namespace ios {

template <typename T = QBTrampoline>
T* trampoline(std::function<void(id sender)> action) {
  T* t = [T new];
  t->action = std::move(action);
  return t;
}

// Keeps the trampoline alive exactly as long as `owner`.
inline void keepWith(id owner, QBTrampoline* t) {
  objc_setAssociatedObject(owner, (__bridge const void*)t, t, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
}

}  // namespace ios
