// Gesture recognizers on the simulated UIKit: long presses and taps added to
// a view (which owns them), their state, and where a tap landed in a view's
// coordinates.
#include "ui/gestures.hpp"

#include <utility>

#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/runtime/lifetimes.hpp"

namespace ui {

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

rt::Id addTap(rt::Id view, bool cancelsTouchesInView,
              std::function<void(rt::Id recognizer)> action) {
  rt::Id g = sim::newObject("UITapGestureRecognizer");
  sim::GestureState& s = *sim::gestureState(g);
  s.cancelsTouchesInView = cancelsTouchesInView;
  s.action = std::move(action);
  rt::send<void>(view, "addGestureRecognizer:", g);
  return sim::autorelease(g);  // the view owns it
}

rt::CGPoint locationInView(rt::Id recognizer, rt::Id view) {
  sim::TapState* t = sim::findExtra<sim::TapState>(recognizer);
  if (!t || !t->touched || !view) return {0, 0};
  rt::CGPoint from = sim::absoluteOrigin(t->touched), to = sim::absoluteOrigin(view);
  return {t->point.x + from.x - to.x, t->point.y + from.y - to.y};
}

}  // namespace ui
