#include "triggers/shake_hooks.hpp"

#include <cmath>

#include "core/config.hpp"
#include "sys/process_state.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/motion.hpp"
#include "sys/queue.hpp"
#include "triggers/unlock.hpp"

namespace triggers {
namespace {

struct ShakeState {
  bool installed = false;
  double lastMagnitude = 0;  // touched only by the sensor queue
  bool handling = false;
  double lastShakeAt = 0;
};

ShakeState& state() { return sys::state<ShakeState>(); }

void installImp(rt::Id, rt::SEL) { QBShakeHooks::install(); }

}  // namespace

void QBShakeHooks::install() {
  ShakeState& s = state();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] shake ex: %@", [] {
    if (sys::deviceMotionAvailable()) {
      sys::startDeviceMotionUpdates(kShakeSampleInterval_s, [](sys::Acceleration a) {
        sample(std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z));
      });
    } else if (sys::accelerometerAvailable()) {
      // Raw acceleration includes gravity: at rest its length is about 1 g.
      sys::startAccelerometerUpdates(kShakeSampleInterval_s, [](sys::Acceleration a) {
        sample(std::fabs(std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z) - 1.0));
      });
    }
  });
}

void QBShakeHooks::sample(double magnitude) {
  ShakeState& s = state();
  double previous = s.lastMagnitude;
  s.lastMagnitude = magnitude;
  // Deliberately loose: one loud sample is enough; the spacing and the checks
  // of handleShake keep a shake from acting twice.
  if (magnitude < kShakeMagnitude_g && std::fabs(magnitude - previous) < kShakeJump_g) return;
  sys::async(handleShake);
}

void QBShakeHooks::handleShake() {
  ShakeState& s = state();
  if (s.handling) return;
  core::QBConfig& c = core::QBConfig::shared();
  if (!c.usesManualVisibility() || c.secretCount() <= 0 || c.suppressSessionApply()) return;
  if (c.suppressAutoLock() && !c.unlocked()) return;  // an authentication is on screen
  rt::Id top = host::QBRuntime::topPresented();
  if (top && rt::isKindOf(top, "UIAlertController")) return;
  double now = sys::mediaTime();
  if (now - s.lastShakeAt < kShakeSpacing_s) return;
  s.lastShakeAt = now;
  s.handling = true;
  bool holding = host::guarded(
      "[QB] shake handle ex: %@",
      [&c] {
        if (c.unlocked()) {
          if (c.shakeHideEnabled()) QBUnlock::hideNow();
          return false;
        }
        if (!c.shakeShowEnabled()) return false;
        QBUnlock::showWithAuthFrom("shake");
        sys::after(kShakeRevealHold_s, [] { state().handling = false; });
        return true;
      },
      false);
  if (!holding) s.handling = false;
}

void QBShakeHooks::registerRuntimeClass() {
  if (rt::getClass("QBShakeHooks")) return;
  rt::Class cls = rt::allocateClassPair(rt::getClass("NSObject"), "QBShakeHooks");
  if (!cls) return;
  rt::registerClassPair(cls);
  rt::addClassMethod(cls, rt::sel("install"), installImp);
}

}  // namespace triggers
