// Haptics and the biometric prompt on iOS: UIImpactFeedbackGenerator, and an
// LAContext that lives until its reply has run.
#include "ui/feedback.hpp"

#import <LocalAuthentication/LocalAuthentication.h>
#import <UIKit/UIKit.h>

#include "bridge.h"

namespace ui {

void impact(ImpactStyle style) {
  UIImpactFeedbackGenerator* generator =
      [[UIImpactFeedbackGenerator alloc] initWithStyle:static_cast<UIImpactFeedbackStyle>(style)];
  [generator prepare];
  [generator impactOccurred];
}

bool canEvaluateBiometrics() {
  return [[LAContext new] canEvaluatePolicy:LAPolicyDeviceOwnerAuthenticationWithBiometrics
                                      error:nil];
}

void evaluateBiometrics(const BiometricRequest& request, std::function<void(bool success)> reply) {
  LAContext* context = [LAContext new];
  context.localizedFallbackTitle = ios::ns(request.fallbackTitle);
  // The reply block holds the context, which must outlive the prompt; an
  // unavailable device answers through the same reply, with NO.
  [context evaluatePolicy:LAPolicyDeviceOwnerAuthenticationWithBiometrics
          localizedReason:ios::ns(request.reason)
                    reply:^(BOOL success, NSError*) {
                      (void)context;
                      ios::shielded("biometric reply", [&] { reply(success); });
                    }];
}

}  // namespace ui
