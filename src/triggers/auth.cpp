#include "triggers/auth.hpp"

#include <memory>
#include <utility>

#include "core/config.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/process_state.hpp"
#include "sys/queue.hpp"
#include "triggers/reveal_settle.hpp"
#include "ui/alerts.hpp"
#include "ui/feedback.hpp"
#include "ui/navigation.hpp"

namespace triggers {
namespace {

using core::QBConfig;

// The password prompt on screen, until it is answered.
// The prompt on screen, held weakly: its presenter owns it, and it is gone
// once dismissed.
struct PromptState {
  rt::Weak alert;
};

// The prompt has left the screen (a button, or taken away).
void forgetPrompt(rt::Id alert) {
  PromptState& p = sys::state<PromptState>();
  rt::Strong shown = p.alert.lock();
  if (!shown || shown.get() == alert) p.alert = rt::Weak();
}

void suppressWhileOnScreen() {
  QBConfig& c = QBConfig::shared();
  c.setSuppressAutoLock(true);
  c.setSuppressSessionApply(true);
}

}  // namespace

rt::Id QBAuth::topVC() {
  rt::Id top = host::QBRuntime::topPresented();
  if (top && rt::isKindOf(top, "UINavigationController"))
    return rt::send<rt::Id>(top, "visibleViewController");
  return top;
}

void QBAuth::askPassword(AuthCompletion completion) {
  rt::Id top = topVC();
  if (!top) {
    completion(false);
    return;
  }
  suppressWhileOnScreen();
  // The answer comes exactly once, even when the alert never shows (the
  // presenter is busy) or is taken away without its buttons.
  auto answered = std::make_shared<bool>(false);
  rt::Id alert = ui::makeAlert("验证身份", "输入口令");
  AuthCompletion once = [completion, answered, alert](bool ok) {
    if (std::exchange(*answered, true)) return;
    forgetPrompt(alert);
    completion(ok);
  };
  ui::addTextField(alert, ui::TextFieldSpec{"口令", true, true});
  ui::addAction(alert, "取消", ui::ActionStyle::Cancel, [once] { once(false); });
  ui::addAction(alert, "确定", ui::ActionStyle::Default, [once, alert] {
    forgetPrompt(alert);
    bool ok = QBConfig::shared().tryUnlockSilentWithPassword(ui::textFieldText(alert, 0));
    if (ok) revealCheckSucceeded();
    sys::after(kPasswordResultDelay_s, [once, ok] { once(ok); });
  });
  ui::onDismissedWithoutAction(alert, [once] { once(false); });
  bool shown = host::guarded(
      "[QB] QBAuth askPassword ex: %@", [&] { return ui::present(top, alert, true); }, false);
  if (!shown) {
    once(false);
    return;
  }
  sys::state<PromptState>().alert = rt::Weak(alert);
}

void QBAuth::cancelPrompt() {
  rt::Strong alert = sys::state<PromptState>().alert.lock();
  sys::state<PromptState>().alert = rt::Weak();
  // Dismissing it without a button answers NO through the prompt's own watch.
  if (alert) ui::dismiss(alert.get(), false, nullptr);
}

void QBAuth::authenticateBiometricReason(const std::string& reason, AuthCompletion completion) {
  // The reply comes from a system queue; the completion always runs on the main queue.
  auto wrapper = [completion](bool ok) { sys::async([completion, ok] { completion(ok); }); };
  if (!ui::canEvaluateBiometrics()) {
    sys::async([wrapper] { askPassword(wrapper); });
    return;
  }
  // The reply comes on LocalAuthentication's queue: everything it touches is
  // the main thread's, so it hops there first.
  ui::evaluateBiometrics(
      ui::BiometricRequest{reason.empty() ? kReasonDefault : reason, ""}, [completion](bool success) {
        sys::async([completion, success] {
          if (!success) {
            completion(false);  // deliberately no password fallback after a failed check
            return;
          }
          revealCheckSucceeded();
          QBConfig::shared().setUnlocked(true);
          completion(true);
        });
      });
}

void QBAuth::authenticateWithMode(long mode, const std::string& reason, AuthCompletion completion) {
  suppressWhileOnScreen();
  if (mode == 1) {
    authenticateBiometricReason(reason, std::move(completion));
    return;
  }
  sys::async([completion] { askPassword(completion); });
}

void QBAuth::authenticateForPanel(AuthCompletion completion) {
  authenticateWithMode(QBConfig::shared().panelAuthMode(), kReasonPanel, std::move(completion));
}

void QBAuth::authenticateForReveal(AuthCompletion completion) {
  authenticateWithMode(QBConfig::shared().revealAuthMode(), kReasonReveal, std::move(completion));
}

void QBAuth::authenticateWithConfiguredMode(AuthCompletion completion) {
  authenticateForPanel(std::move(completion));
}

void QBAuth::authenticateToShowWithFallbackPassword(bool, AuthCompletion completion) {
  authenticateForReveal(std::move(completion));
}

}  // namespace triggers
