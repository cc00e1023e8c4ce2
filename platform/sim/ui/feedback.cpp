// Haptics and the biometric prompt on the simulated device: an impact is
// recorded on the process; an evaluation shows the system's sheet (the app
// resigns active) and waits for the simulator to answer it. With no
// biometrics enrolled the reply is a failure, on the main queue.
#include "ui/feedback.hpp"

#include <string>
#include <utility>

#include "sim/process.hpp"
#include "sys/queue.hpp"

namespace ui {

void impact(ImpactStyle style) {
  sim::currentProcess().platform().haptics.push_back("impact " + std::to_string(int(style)));
}

bool canEvaluateBiometrics() {
  return sim::currentProcess().device().biometrics != sim::Biometrics::None;
}

void evaluateBiometrics(const BiometricRequest& request, std::function<void(bool success)> reply) {
  sim::PlatformState& p = sim::currentProcess().platform();
  if (!canEvaluateBiometrics()) {
    sys::async([reply] { reply(false); });
    return;
  }
  p.biometricReason = request.reason;
  p.biometricFallbackTitle = request.fallbackTitle;
  p.biometricReply = std::move(reply);
  // The system's sheet takes the screen a moment later: the app resigns active.
  sys::async([] { sim::currentProcess().systemPromptAppeared(); });
}

}  // namespace ui
