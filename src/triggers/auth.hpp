// QBAuth: asks the user to prove who they are before the secrets are shown
// or the panel opens: a password typed into an alert, or the device's
// biometric check. Every completion is called exactly once, on the main queue.
#pragma once

#include <functional>
#include <string>

#include "rt/types.hpp"

namespace triggers {

using AuthCompletion = std::function<void(bool passed)>;

struct QBAuth {
  static rt::Id topVC();
  static void askPassword(AuthCompletion completion);
  // Takes the password prompt off the screen, if one is up; its completion
  // answers NO. Leaving the app must not leave a prompt waiting for whoever
  // holds the phone next.
  static void cancelPrompt();
  static void authenticateBiometricReason(const std::string& reason, AuthCompletion completion);
  // Mode 1 is the biometric check; any other value is the password.
  static void authenticateWithMode(long mode, const std::string& reason, AuthCompletion completion);
  static void authenticateForPanel(AuthCompletion completion);
  static void authenticateForReveal(AuthCompletion completion);
};

inline constexpr const char* kReasonPanel = "验证以进入密友控制台";
inline constexpr const char* kReasonReveal = "验证以显示密友";
inline constexpr const char* kReasonDefault = "验证身份";
inline constexpr double kPasswordResultDelay_s = 0.45;

}  // namespace triggers
