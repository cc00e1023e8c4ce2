// Gesture recognizers on iOS. A recognizer does not retain its target, so
// the trampoline that holds the system's function is attached to the
// recognizer itself and lives exactly as long.
#include "ui/gestures.hpp"

#import <UIKit/UIKit.h>

#include <utility>

#include "bridge.h"
#include "trampoline.h"

namespace ui {
namespace {

template <typename Recognizer>
Recognizer* attach(rt::Id view, bool cancelsTouchesInView,
                   std::function<void(rt::Id recognizer)> action) {
  QBTrampoline* target =
      ios::trampoline([action = std::move(action)](id sender) { action(ios::handle(sender)); });
  Recognizer* g = [[Recognizer alloc] initWithTarget:target action:@selector(fire:)];
  ios::keepWith(g, target);
  g.cancelsTouchesInView = cancelsTouchesInView;
  ios::translating([&] { [(UIView*)ios::object(view) addGestureRecognizer:g]; });
  return g;
}

UIGestureRecognizer* recognizerOf(rt::Id recognizer) {
  id r = ios::object(recognizer);
  return [r isKindOfClass:[UIGestureRecognizer class]] ? (UIGestureRecognizer*)r : nil;
}

}  // namespace

rt::Id addLongPress(rt::Id view, double minimumPressDuration, bool cancelsTouchesInView,
                    std::function<void(rt::Id recognizer)> action) {
  UILongPressGestureRecognizer* g =
      attach<UILongPressGestureRecognizer>(view, cancelsTouchesInView, std::move(action));
  g.minimumPressDuration = minimumPressDuration;
  return ios::handle(g);
}

GestureState gestureState(rt::Id recognizer) {
  UIGestureRecognizer* r = recognizerOf(recognizer);
  return r ? static_cast<GestureState>(r.state) : GestureState::Possible;
}

rt::Id addTap(rt::Id view, bool cancelsTouchesInView,
              std::function<void(rt::Id recognizer)> action) {
  return ios::handle(attach<UITapGestureRecognizer>(view, cancelsTouchesInView, std::move(action)));
}

rt::CGPoint locationInView(rt::Id recognizer, rt::Id view) {
  UIGestureRecognizer* r = recognizerOf(recognizer);
  if (!r || !view) return {0, 0};
  CGPoint p = [r locationInView:(UIView*)ios::object(view)];
  return {p.x, p.y};
}

}  // namespace ui
