// The panel's rows as plain data: where each sits, what its cell says, and
// the setting it changes, under the settings file's key. The panel's table,
// quenby-sim's `setting` and `panel` commands, and the swarm all read this.
#pragma once

#include <span>
#include <string_view>

#include "ui/drawing.hpp"

namespace panel {

enum Section : long {
  kVisibility = 0,
  kWake = 1,
  kHide = 2,
  kNotify = 3,
  kCalls = 4,
  kPanelAuth = 5,
  kRevealAuth = 6,
  kSecrets = 7
};

// The visibility mode a row is shown in.
enum class ShownIn { Both, Manual, Schedule };

enum class RowKind {
  Choice,     // a checkmark row: picks `value` for `key`
  Switch,     // a switch: turns `key` on or off
  Password,   // asks for a new password
  Window,     // one row per daily window, then an add row
  AddSecret,  // opens the contact picker
  Secret      // one row per secret, below the add row
};

struct PanelRow {
  Section section;
  long row;  // the first row for Window and Secret
  ShownIn shownIn;
  RowKind kind;
  const char* key;  // the settings file's key; "" for rows that change no single setting
  long value;       // what a Choice row picks
  const char* title;
  const char* detail;
  const char* symbol;
  ui::Color tint;
  const char* action;  // a Switch's selector on the panel
};

std::span<const PanelRow> panelRows();
bool isShown(const PanelRow& row, bool schedule);
// The row drawn at (section, row) in the given mode, nullptr for none. Window
// and Secret rows answer for every row from their first on.
const PanelRow* rowAt(long section, long row, bool schedule);
// The Choice row that picks `value` for `key`, else the first row of `key`.
const PanelRow* rowFor(std::string_view key, long value = 0);
const PanelRow* rowWithAction(std::string_view action);
// The largest value a Choice key takes (its values run from 0), -1 when `key` has no Choice row.
long maxChoice(std::string_view key);

}  // namespace panel
