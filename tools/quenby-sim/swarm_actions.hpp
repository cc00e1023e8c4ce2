// What a person may do next, and how often: the swarm's steps as weighted
// tables, read by a single picking rule. An action a person cannot take in
// the situation on screen has no weight there; weight 0 is never picked.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace qbsim::swarm {

enum class Action {
  Message,          // a message arrives
  Call,             // a voice or video call rings
  MomentOrSession,  // a moment is posted, or a chat starts
  Open,             // a screen of the host app
  Shake,
  LongPress,
  WayIn,  // the About page's taps: the full way in to the panel, or a few taps
  Type,   // into the dialog on screen
  Press,  // a dialog's button
  Biometric,
  PanelRow,  // a row of the panel, or closing it
  Secret,    // a contact made secret or not, as the picker and swipe-delete do
  Setting,   // one setting changed as the panel would, without its screen
  LeaveOrReturn,
  Restart,  // launch, quit, or back to the main list
  ShortWait,
  ThresholdWait,  // just before, at or after one of the system's own thresholds
  Send,           // the last: the tests count up to it
};

// What is on screen, as far as the choice depends on it.
struct Situation {
  // The panel's sheet, or a prompt, holds the screen: a person changes
  // settings only through the panel, so not behind it or past a prompt.
  bool panelOrPromptUp = false;
};

struct ActionWeight {
  Action action;
  unsigned weight;
  bool needsFreeScreen = false;  // taken only when the panel and prompts are away
};

// The user's day, step by step. The order is the draw's: a seed replays only
// while it stays.
// clang-format off
inline constexpr ActionWeight kActionWeights[] = {
    {Action::Message, 3},
    {Action::Call, 1},
    {Action::MomentOrSession, 1},
    {Action::Open, 1},
    {Action::Shake, 2},
    {Action::LongPress, 1},
    {Action::WayIn, 1},
    {Action::Type, 2},
    {Action::Press, 1},
    {Action::Biometric, 1},
    {Action::PanelRow, 1},
    {Action::Secret, 1},
    {Action::Setting, 1, /*needsFreeScreen=*/true},
    {Action::LeaveOrReturn, 1},
    {Action::Restart, 1},
    {Action::ShortWait, 1},
    {Action::ThresholdWait, 4},
    {Action::Send, 2},
};
// clang-format on

enum class PanelStep { SettingRow, AddSecret, PasswordRow, WindowEditor, SwipeDelete };

struct PanelStepWeight {
  PanelStep step;
  unsigned weight;
  bool worthTheWayIn = false;  // rare enough to open the panel for, half the time
};

// Once the panel is the step: its rows, by how often a person uses them.
// clang-format off
inline constexpr PanelStepWeight kPanelStepWeights[] = {
    {PanelStep::SettingRow, 7},
    {PanelStep::AddSecret, 1},
    {PanelStep::PasswordRow, 1, /*worthTheWayIn=*/true},
    {PanelStep::WindowEditor, 1, /*worthTheWayIn=*/true},
    {PanelStep::SwipeDelete, 1, /*worthTheWayIn=*/true},
};
// clang-format on

// A number below n, from the run's seeded source.
using Pick = std::function<std::uint64_t(std::uint64_t n)>;

// One draw below the total weight, walked along the table in order: the row
// it lands in, or none when every weight is 0.
template <typename Row>
const Row* choose(std::span<const Row> table, const Pick& pick) {
  std::uint64_t total = 0;
  for (const Row& row : table) total += row.weight;
  if (total == 0) return nullptr;
  std::uint64_t r = pick(total);
  for (const Row& row : table) {
    if (r < row.weight) return &row;
    r -= row.weight;
  }
  return nullptr;
}

// The actions a person may take in `now`, with their weights (none of them 0).
std::vector<ActionWeight> actionsNow(const Situation& now);
Action nextAction(const Situation& now, const Pick& pick);
PanelStepWeight nextPanelStep(const Pick& pick);

// The system's own timing thresholds a wait straddles, each once, ascending.
std::span<const double> thresholds();

}  // namespace qbsim::swarm
