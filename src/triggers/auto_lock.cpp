#include "triggers/auto_lock.hpp"

#include <algorithm>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/ownership.hpp"
#include "rt/send.hpp"
#include "sys/process_state.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/queue.hpp"
#include "triggers/reveal_settle.hpp"
#include "ui/views.hpp"

namespace triggers {
namespace {

struct AutoLockState {
  double lastAutoLockAt = 0;
};

bool isBackground(const std::string& name) {
  return name == sys::kDidEnterBackground || name == sys::kSceneDidEnterBackground;
}

}  // namespace

void QBAutoLock::install() {
  for (const char* name : {sys::kDidEnterBackground, sys::kWillResignActive,
                           sys::kSceneDidEnterBackground, sys::kSceneWillDeactivate}) {
    sys::addObserver(name, [](const sys::Notification& n) {
      std::string reason = n.name.empty() ? "?" : n.name;
      // A reveal still settling holds the auto-lock back against the prompt's
      // own resign-active, never against really leaving the app.
      RevealSettle& settle = revealSettle();
      if (settle.settling && isBackground(n.name)) {
        if (lockNow(reason, true)) settle.lockedWhileSettling = true;
      } else {
        autoLockWithReason(reason);
      }
    });
  }
  sys::log("[QB] auto-lock OK");
}

void QBAutoLock::autoLockWithReason(std::string_view reason) { lockNow(reason, false); }

bool QBAutoLock::lockNow(std::string_view reason, bool evenIfSuppressed) {
  core::QBConfig& c = core::QBConfig::shared();
  // In schedule mode the schedule alone decides; an authentication on screen
  // makes the app resign active and must not re-lock.
  if (!c.usesManualVisibility() || (c.suppressAutoLock() && !evenIfSuppressed) ||
      c.secretCount() <= 0 || !c.unlocked())
    return false;
  AutoLockState& s = sys::state<AutoLockState>();
  double now = sys::mediaTime();
  if (now - s.lastAutoLockAt < kAutoLockDebounce_s) return false;
  s.lastAutoLockAt = now;
  sys::log("[QB] auto-lock %@", reason);
  c.lock();
  return true;
}

void QBAutoLock::flashToast(const std::string& message) {
  if (message.empty()) return;
  rt::Id window = host::QBRuntime::keyWindow();
  if (!window) return;
  ui::LabelStyle style;
  style.font = ui::Font{14, ui::Weight::Semibold};
  style.background = ui::Color{0, 0, 0, 0.78};
  style.centered = true;
  style.cornerRadius = 14;
  style.clipsToBounds = true;
  style.numberOfLines = 2;
  // Held until it has faded out: the window may let go of it first.
  rt::Strong label(ui::makeLabel(message, style));
  rt::CGRect bounds = rt::send<rt::CGRect>(window, "bounds");
  double width = std::min(bounds.size.width - 40, 280.0), height = 44;
  rt::CGPoint centre{rt::midX(bounds), bounds.size.height * 0.78};
  rt::send<void>(label.get(), "setFrame:",
                 rt::CGRect{{centre.x - width / 2, centre.y - height / 2}, {width, height}});
  rt::send<void>(label.get(), "setAlpha:", 0.0);
  rt::send<void>(window, "addSubview:", label.get());
  ui::animate(
      kToastFadeIn_s, [label] { rt::send<void>(label.get(), "setAlpha:", 1.0); },
      [label] {
        sys::after(kToastShown_s, [label] {
          ui::animate(
              kToastFadeOut_s, [label] { rt::send<void>(label.get(), "setAlpha:", 0.0); },
              [label] { rt::send<void>(label.get(), "removeFromSuperview"); });
        });
      });
}

}  // namespace triggers
