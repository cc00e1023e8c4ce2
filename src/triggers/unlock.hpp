// QBUnlock: the two manual actions, hide at once and reveal after
// authentication, and the long press on the navigation bar of the chat list or
// a chat that toggles between them. Manual visibility mode only.
#pragma once

#include <string_view>

#include "rt/types.hpp"

namespace triggers {

struct QBUnlock {
  static void bumpHaptic();
  static void hideNow();
  // `source` names the trigger in the log ("shake", "longPress").
  static void showWithAuthFrom(std::string_view source);
  static void attachLongPressToVC(rt::Id controller);
  static void onLongPress(rt::Id recognizer);
  static void installLongPressWake();
};

inline constexpr double kRevealDebounce_s = 0.8;
inline constexpr double kRevealSettle_s = 2.0;
inline constexpr double kLongPressDuration_s = 0.7;
// A hide reloads the list once the haptic and the gesture that asked for it are done.
inline constexpr double kHideReload_s = 0.15;
inline constexpr const char* kLongPressScreens[] = {"NewMainFrameViewController",
                                                    "BaseMsgContentViewController"};

}  // namespace triggers
