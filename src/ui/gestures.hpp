// Gesture recognizers the system attaches to host views. On iOS:
// UILongPressGestureRecognizer / UITapGestureRecognizer initWithTarget:action:
// (the target is a small trampoline object holding the block),
// minimumPressDuration, cancelsTouchesInView, addGestureRecognizer:, state.
#pragma once

#include <functional>

#include "rt/geometry.hpp"
#include "rt/types.hpp"

namespace ui {

enum class GestureState : long {
  Possible = 0,
  Began = 1,
  Changed = 2,
  Ended = 3,
  Cancelled = 4,
  Failed = 5
};

// Adds a long-press recognizer to `view`; `action` receives the recognizer
// on each state change. Returns the recognizer.
rt::Id addLongPress(rt::Id view, double minimumPressDuration, bool cancelsTouchesInView,
                    std::function<void(rt::Id recognizer)> action);
GestureState gestureState(rt::Id recognizer);
// Adds a tap recognizer to `view`; `action` receives it once the tap has
// been recognised (state Ended). Returns the recognizer.
rt::Id addTap(rt::Id view, bool cancelsTouchesInView,
              std::function<void(rt::Id recognizer)> action);
// locationInView: the touch's position in `view`'s coordinates.
rt::CGPoint locationInView(rt::Id recognizer, rt::Id view);

}  // namespace ui
