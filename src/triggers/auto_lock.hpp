// QBAutoLock: in manual mode, the secrets are hidden again whenever the app
// leaves the foreground. Both the application's and the scene's notifications
// are observed; the duplicates of one departure fall under a short debounce.
#pragma once

#include <string_view>

namespace triggers {

struct QBAutoLock {
  static void install();
  static void autoLockWithReason(std::string_view reason);
};

inline constexpr double kAutoLockDebounce = 0.8;

}  // namespace triggers
