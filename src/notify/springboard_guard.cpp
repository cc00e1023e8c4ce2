#include "notify/springboard_guard.hpp"

#include <mutex>
#include <string>

#include "core/daily_window.hpp"
#include "host/hook.hpp"
#include "notify/predicates.hpp"
#include "notify/probes.hpp"
#include "notify/springboard_gate.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "sys/audio.hpp"
#include "sys/clock.hpp"
#include "sys/process_state.hpp"

namespace notify {
namespace {

using rt::Id;
using rt::SEL;

struct GuardState {
  bool installed = false;
  host::Hook<void(Id)> post;
  // SpringBoard may hand requests over from more than one thread.
  std::mutex mutex;
  SpringBoardGate gate;
};

GuardState& st() { return sys::state<GuardState>(); }

enum class Verdict { Pass, Drop, Silence };

std::string text(Id obj) { return rt::asString(obj).value_or(""); }

// Whether the app in front is `bundle`'s. When SpringBoard cannot say, the
// host is taken to be in front: its own paths decide, as without the guard.
bool inForeground(const std::string& bundle) {
  Id springBoard = rt::send<Id>(rt::getClass("UIApplication"), "sharedApplication");
  SEL front = rt::sel("_accessibilityFrontMostApplication");
  if (!springBoard || !rt::respondsTo(springBoard, front)) return true;
  Id app = rt::send<Id>(springBoard, front);
  return app && text(rt::send<Id>(app, "bundleIdentifier")) == bundle;
}

// Hidden as SpringBoard can tell with the app away: in manual mode leaving
// hides; in schedule mode the windows decide.
bool hiddenNow(const core::GateRecord& gate) {
  if (gate.visibilityControl == 0) return true;
  return !core::windowsShowAt(gate.windows, sys::localMinuteOfDay());
}

// The request's title and text, as far as its content answers them.
std::string contentText(Id content, const char* selector) {
  SEL s = rt::sel(selector);
  return content && rt::respondsTo(content, s) ? text(rt::send<Id>(content, s)) : "";
}

// What the person would read: a missed call the system presents says so in
// its texts. SpringBoard presents for every app, so its user info is left to
// the app's own paths, which read it while the app runs.
bool callAnnounced(Id request, const core::GateRecord& gate) {
  Id content =
      rt::respondsTo(request, rt::sel("content")) ? rt::send<Id>(request, "content") : nullptr;
  return callSwitchesBlock(gate.voipVoice, gate.voipVideo, contentText(content, "title"),
                           contentText(content, "message"), nullptr);
}

Verdict verdictFor(Id request) {
  std::string bundle = text(rt::send<Id>(request, "sectionIdentifier"));
  if (bundle.empty()) return Verdict::Pass;
  GuardState& s = st();
  std::lock_guard lock(s.mutex);
  SpringBoardGate::Host* host = s.gate.gateFor(bundle);
  if (!host) return Verdict::Pass;
  const core::GateRecord& gate = *host->record;
  if (gate.hashes.empty()) return Verdict::Pass;
  bool callsFollowSwitches = !(gate.voipVoice && gate.voipVideo);
  bool hidden = hiddenNow(gate);
  if (!callsFollowSwitches && (gate.notifyMode == 2 || !hidden)) return Verdict::Pass;
  if (inForeground(bundle)) return Verdict::Pass;
  Id context = rt::send<Id>(request, "context");
  Id userInfo = rt::isDictionary(context) ? rt::objectForKey(context, "userInfo") : nullptr;
  std::string thread = text(rt::send<Id>(request, "threadIdentifier"));
  if (!partsName(userInfo, thread, [host](std::string_view u) { return host->isSecret(u); }))
    return Verdict::Pass;
  if (hidden && gate.notifyMode == 0) return Verdict::Drop;
  // A secret's call announcement (a missed call the app posted before it
  // slept, one the system presents for it) follows the call switches in
  // every mode, revealed or not, as in the app.
  if (callsFollowSwitches && callAnnounced(request, gate)) return Verdict::Drop;
  if (gate.notifyMode == 2 || !hidden) return Verdict::Pass;
  return Verdict::Silence;
}

void postNotification(Id self, SEL cmd, Id request) {
  st().post.run(
      "[QB] lock-screen guard ex: %@",
      [&](auto& original) {
        switch (verdictFor(request)) {
          case Verdict::Drop:
            return;  // no banner, sound, vibration or Notification Center entry
          case Verdict::Silence: {
            // Already silent: the app's own path took the sound away and
            // vibrated; a second vibration would be one too many.
            if (!rt::send<Id>(request, "sound")) break;
            rt::Strong quiet = rt::Strong::adopt(rt::send<Id>(request, "mutableCopy"));
            rt::send<void>(quiet.get(), "setSound:", Id{nullptr});
            original(quiet.get());
            sys::playSystemSound(sys::kSystemSoundVibrate);
            return;
          }
          case Verdict::Pass:
            break;
        }
        original(request);
      },
      self, cmd, request);
}

}  // namespace

void QBSpringBoardGuard::install() {
  GuardState& s = st();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] lock-screen guard install ex: %@", [&] {
    rt::Class dispatcher = rt::getClass(kDispatcherClass);
    if (!dispatcher || !rt::getInstanceMethod(dispatcher, rt::sel(kPostRequestSelector))) {
      sys::log("[QB] lock-screen guard not installed: no %@ %@", std::string(kDispatcherClass),
               std::string(kPostRequestSelector));
      return;
    }
    if (s.post.replace(dispatcher, kPostRequestSelector, postNotification))
      sys::log("[QB] lock-screen guard installed");
    else
      sys::log("[QB] lock-screen guard not installed");
  });
}

}  // namespace notify
