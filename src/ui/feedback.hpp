// Haptics and the biometric check. On iOS: UIImpactFeedbackGenerator
// (initWithStyle:, prepare, impactOccurred) and LocalAuthentication's
// LAContext (localizedFallbackTitle, canEvaluatePolicy:error: and
// evaluatePolicy:localizedReason:reply: with policy 1, biometrics only).
#pragma once

#include <functional>
#include <string>

namespace ui {

enum class ImpactStyle { Light = 0, Medium = 1, Heavy = 2, Soft = 3, Rigid = 4 };
void impact(ImpactStyle style);

struct BiometricRequest {
  std::string reason;
  std::string fallbackTitle;  // "" removes the prompt's own fallback button
};
// Whether the device can run a biometric check now (hardware present and enrolled).
bool canEvaluateBiometrics();
// Shows the system prompt; `reply` is called once, off the main queue, with
// the outcome (a cancel is a failure).
void evaluateBiometrics(const BiometricRequest& request, std::function<void(bool success)> reply);

}  // namespace ui
