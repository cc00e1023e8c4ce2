#include "panel/panel_flow.hpp"

#include <utility>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "rt/ownership.hpp"
#include "rt/send.hpp"
#include "sys/notifications.hpp"
#include "sys/process_state.hpp"
#include "sys/queue.hpp"
#include "triggers/auth.hpp"
#include "triggers/schedule.hpp"
#include "ui/navigation.hpp"

namespace panel {
namespace {

using core::QBConfig;

struct PanelFlowState {
  unsigned long current = 0;  // the number of the flow under way; 0 for none
  unsigned long issued = 0;
  rt::Weak sheet;  // the presented navigation controller, while on screen
  bool departureInstalled = false;
};

PanelFlowState& flowState() { return sys::state<PanelFlowState>(); }

// Leaving the app ends whatever of the panel is under way: the prompt goes
// (answering NO), a check's pending answer and the panel's delayed
// presentation find their flow ended, the sheet and all above it go without
// animation, and the secrets are hidden before the system takes its picture.
void leaveApp() {
  PanelFlowState& s = flowState();
  if (!s.current) return;
  triggers::QBAuth::cancelPrompt();
  rt::Strong sheet = s.sheet.lock();
  s.sheet = rt::Weak();
  if (sheet)
    if (rt::Id presenter = rt::send<rt::Id>(sheet.get(), "presentingViewController"))
      ui::dismiss(presenter, false, nullptr);
  lockAfterPanel(s.current);
}

}  // namespace

unsigned long beginPanelFlow() {
  PanelFlowState& s = flowState();
  s.current = ++s.issued;
  s.sheet = rt::Weak();
  return s.current;
}

bool panelFlowCurrent(unsigned long flow) { return flow && flowState().current == flow; }

unsigned long currentPanelFlow() { return flowState().current; }

void panelShown(rt::Id sheet) { flowState().sheet = rt::Weak(sheet); }

void endPanelFlow() {
  PanelFlowState& s = flowState();
  s.current = 0;
  s.sheet = rt::Weak();
}

void lockAfterPanel(unsigned long flow) {
  PanelFlowState& s = flowState();
  bool newer = s.current && s.current != flow;
  QBConfig& c = QBConfig::shared();
  if (!newer) {
    endPanelFlow();
    c.setSuppressAutoLock(false);
    c.setSuppressSessionApply(false);
  }
  if (!c.usesManualVisibility()) {
    triggers::QBSchedule::applyNow();  // frozen while a newer flow's prompt is up
    return;
  }
  c.setUnlocked(false);
  hiding::QBSessionHooks::refreshFilterCache();
  // The list the sheet leaves behind is seen at once, not after the reload
  // below; that one catches a list the host rebuilt meanwhile.
  hiding::QBSessionHooks::softReloadMainFrameForce(true);
  sys::after(kCloseReloadDelay_s, [] { hiding::QBSessionHooks::softReloadMainFrameForce(true); });
}

void hideAfterEndedFlow() {
  QBConfig& c = QBConfig::shared();
  if (flowState().current || !c.usesManualVisibility() || !c.unlocked()) return;
  c.setUnlocked(false);
  hiding::QBSessionHooks::refreshFilterCache();
  hiding::QBSessionHooks::softReloadMainFrameForce(true);
}

void installPanelDeparture() {
  PanelFlowState& s = flowState();
  if (s.departureInstalled) return;
  s.departureInstalled = true;
  for (const char* name : {sys::kSceneDidEnterBackground, sys::kDidEnterBackground})
    sys::addObserver(name, [](const sys::Notification&) { leaveApp(); });
}

}  // namespace panel
