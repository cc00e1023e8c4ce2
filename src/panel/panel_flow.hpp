// The panel's way from the five taps to 完成, and what leaving the app does to
// it. While anything of the panel is on screen or on its way (its prompt, the
// check's result, the sheet, a dialog or the picker above it) the auto-lock is
// held back, so leaving the app must close all of it and lock at once: the
// panel's own promise is that leaving hides the secrets in manual mode, and
// the app switcher's picture must not show the panel's list of secrets.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace panel {

// A new way to the panel starts (the five taps' check); any earlier one is over.
// Returns its number, which stays current until the flow ends.
unsigned long beginPanelFlow();
// Whether the flow `flow` is still the current one: a check's answer or a
// delayed step of a flow that leaving the app ended does nothing.
bool panelFlowCurrent(unsigned long flow);
// The flow under way, 0 for none.
unsigned long currentPanelFlow();
// The panel is on screen: `sheet` is what was presented (its navigation controller).
void panelShown(rt::Id sheet);
// The flow has ended without the panel (a failed check, a refused presentation).
void endPanelFlow();
// The panel of flow `flow` has gone (完成, dragged away, or the app left): the
// secrets are hidden again in manual mode (the lists at once) or handed to the
// schedule, and the hand-off flags cleared — unless a newer flow has begun
// meanwhile (five taps during the closing animation), whose prompt keeps them.
// Harmless when that flow has been closed already.
void lockAfterPanel(unsigned long flow);
// A check that passed for a flow the app's leaving had ended: in manual mode
// the secrets it showed are hidden again, unless a newer panel is under way.
void hideAfterEndedFlow();
// Observes the app leaving the foreground, once per process.
void installPanelDeparture();

}  // namespace panel
