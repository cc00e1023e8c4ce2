// QBAutoLock: in manual mode, the secrets are hidden again whenever the app
// leaves the foreground. Both the application's and the scene's notifications
// are observed; the duplicates of one departure fall under a short debounce.
#pragma once

#include <string_view>

namespace triggers {

struct QBAutoLock {
  static void install();
  static void autoLockWithReason(std::string_view reason);
  // The auto-lock's conditions and debounce; `evenIfSuppressed` for a reveal
  // still settling when the app leaves. True when it locked.
  static bool lockNow(std::string_view reason, bool evenIfSuppressed);
};

inline constexpr double kAutoLockDebounce_s = 0.8;

}  // namespace triggers
