// QBAutoLock: in manual mode, the secrets are hidden again whenever the app
// leaves the foreground. Both the application's and the scene's notifications
// are observed; the duplicates of one departure fall under a short debounce.
#pragma once

#include <string>
#include <string_view>

namespace triggers {

struct QBAutoLock {
  static void install();
  static void autoLockWithReason(std::string_view reason);
  // The auto-lock's conditions and debounce; `evenIfSuppressed` for a reveal
  // still settling when the app leaves. True when it locked.
  static bool lockNow(std::string_view reason, bool evenIfSuppressed);
  // A short self-dismissing message over the key window. Offered, not called.
  static void flashToast(const std::string& message);
};

inline constexpr double kAutoLockDebounce_s = 0.8;
inline constexpr double kToastFadeIn_s = 0.2, kToastShown_s = 1.0, kToastFadeOut_s = 0.25;

}  // namespace triggers
