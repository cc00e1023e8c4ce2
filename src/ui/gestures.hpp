// Gesture recognizers the system attaches to host views. On iOS:
// UILongPressGestureRecognizer / UITapGestureRecognizer initWithTarget:action:
// (the target is a small trampoline object holding the block),
// minimumPressDuration, cancelsTouchesInView, addGestureRecognizer:, state.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace ui {

enum class GestureState : long { Possible = 0, Began = 1, Changed = 2, Ended = 3, Cancelled = 4, Failed = 5 };

// Adds a long-press recognizer to `view`; `action` receives the recognizer
// on each state change. Returns the recognizer.
rt::Id addLongPress(rt::Id view, double minimumPressDuration, bool cancelsTouchesInView,
                    std::function<void(rt::Id recognizer)> action);
GestureState gestureState(rt::Id recognizer);

}  // namespace ui
