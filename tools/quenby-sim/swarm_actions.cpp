#include "swarm_actions.hpp"

#include <algorithm>
#include <array>

#include "hiding/session_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "sim/process.hpp"
#include "triggers/auth.hpp"
#include "triggers/auto_lock.hpp"
#include "triggers/entry_hooks.hpp"
#include "triggers/schedule.hpp"
#include "triggers/shake_hooks.hpp"
#include "triggers/unlock.hpp"

namespace qbsim::swarm {
namespace {

// Named where the system defines them, so a changed value moves the probes
// with it. Several share a value; each value is probed once.
constexpr double kNamed[] = {
    triggers::kPasswordResultDelay_s, hiding::kCountCacheLife_s,     panel::kBusyRetry_s,
    triggers::kLongPressDuration_s,   triggers::kShakeSpacing_s,     hiding::kSoftReloadThrottle_s,
    triggers::kAutoLockDebounce_s,    triggers::kRevealDebounce_s,   hiding::kAppearanceThrottle_s,
    hiding::kForceApplyThrottle_s,    triggers::kEntryTapGap,        triggers::kRevealSettle_s,
    triggers::kScheduleInterval_s,    sim::Process::kSuspendGrace_s,
};

constexpr auto kAscending = [] {
  std::array<double, std::size(kNamed)> a{};
  std::copy(std::begin(kNamed), std::end(kNamed), a.begin());
  std::sort(a.begin(), a.end());
  return a;
}();

constexpr std::size_t kDistinct = [] {
  std::size_t n = 0;
  for (std::size_t i = 0; i < kAscending.size(); ++i)
    if (i == 0 || kAscending[i] != kAscending[i - 1]) ++n;
  return n;
}();

constexpr auto kThresholds = [] {
  std::array<double, kDistinct> out{};
  std::size_t n = 0;
  for (std::size_t i = 0; i < kAscending.size(); ++i)
    if (i == 0 || kAscending[i] != kAscending[i - 1]) out[n++] = kAscending[i];
  return out;
}();

}  // namespace

std::vector<ActionWeight> actionsNow(const Situation& now) {
  std::vector<ActionWeight> out;
  for (const ActionWeight& a : kActionWeights)
    if (a.weight > 0 && !(a.needsFreeScreen && now.panelOrPromptUp)) out.push_back(a);
  return out;
}

Action nextAction(const Situation& now, const Pick& pick) {
  std::vector<ActionWeight> options = actionsNow(now);
  const ActionWeight* a = choose(std::span<const ActionWeight>(options), pick);
  return a ? a->action : Action::ShortWait;
}

PanelStepWeight nextPanelStep(const Pick& pick) {
  const PanelStepWeight* s = choose(std::span<const PanelStepWeight>(kPanelStepWeights), pick);
  return s ? *s : kPanelStepWeights[0];
}

std::span<const double> thresholds() { return kThresholds; }

}  // namespace qbsim::swarm
