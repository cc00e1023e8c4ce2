// The way in to the panel and the steps on it: what each row saves, as the
// model learns it.
#include "panel/panel_rows.hpp"
#include "swarm_driver.hpp"
#include "triggers/entry_hooks.hpp"

namespace qbsim::swarm {
namespace {

// The panel's section of daily windows, in schedule mode.
const long kWindows = panel::rowFor("dailyWindows")->section;

}  // namespace

// Taps on the About page, quick enough (or not) to count as the entry: the
// page's recognizers attach after it loads and after it appears, and a tap
// counts toward the entry within the tap gap of the one before.
void Day::aboutTaps() {
  if (world_.screen() != "SettingAboutMMViewController") {
    exec("open about");
    exec("wait " + seconds(chance(50) ? triggers::kEntryLoadAttachDelay + 0.05
                                      : triggers::kEntryAppearAttachDelay + 0.1));
  }
  const char* tap = oneOf({"tap version", "tap nav", "tap nav 120", "tap page", "tap page 300"});
  for (int k = 0, n = 3 + int(pick(4)); k < n; ++k) {
    exec(tap);
    if (chance(20))
      exec("wait " + seconds(chance(50) ? triggers::kEntryTapGap : triggers::kEntryTapGap - 0.05));
  }
}

// The way in to the panel, done right: five quick taps, then the check.
void Day::openPanel() {
  exec("open about");
  exec("wait 0.7");
  for (int k = 0; k < 5; ++k) exec("tap version");
  exec("wait 0.5");
  exec("type " + model_.password);
  exec("press 确定");
  exec("biometric pass");
  exec("wait 1");
}

// A step on the panel (skipped unless it is on screen): the model learns
// what the row saves, as it does for `setting`.
void Day::panelStep() {
  PanelStepWeight step = nextPanelStep(picker());
  if (step.worthTheWayIn && !world_.panelOnTop() && chance(50)) openPanel();
  switch (step.step) {
    case PanelStep::PasswordRow:
      return passwordRow();
    case PanelStep::WindowEditor:
      return windowEditor();
    case PanelStep::SwipeDelete:
      return swipeDelete();
    case PanelStep::AddSecret: {
      std::string who = oneOf(kSecretCandidates);
      exec("panel tap " + std::to_string(panel::kSecrets) + " 0");
      Settings next = model_;
      next.secrets.insert(who);
      exec("picker pick " + who, [&] { savedNow(next); });
      return;
    }
    case PanelStep::SettingRow:
      return settingRow();
  }
}

// A check or a switch row of the panel's table, and the value the table
// says it saves.
void Day::settingRow() {
  std::vector<const panel::PanelRow*> rows;
  for (const panel::PanelRow& r : panel::panelRows())
    if (r.kind == panel::RowKind::Choice || r.kind == panel::RowKind::Switch) rows.push_back(&r);
  const panel::PanelRow& r = *rows[pick(rows.size())];
  std::string at = std::to_string(r.section) + " " + std::to_string(r.row);
  bool on = chance(50);
  bool isSwitch = r.kind == panel::RowKind::Switch;
  Settings next = model_;
  bool saves = true;
  if (isSwitch) {
    std::optional<World::ShownRow> shown = world_.panelRow(r.section, r.row);
    saves = learnSwitch(next, r.key, on, shown ? shown->state : "");
  } else {
    learnSetting(next, r.key, std::to_string(r.value));
  }
  exec(isSwitch ? "panel switch " + at + (on ? " on" : " off") : "panel tap " + at, [&] {
    if (saves) savedNow(next);
  });
}

// Runs the lines in order while each applies; true when all did.
bool Day::sequence(std::initializer_list<std::string> lines) {
  for (const std::string& line : lines)
    if (!exec(line)) return false;
  return true;
}

void Day::savedNow(const Settings& next) {
  model_ = next;
  checker_->saved(model_, world_.elapsed());
}

// The panel's password row: a dialog for the new one; a short one is dropped.
void Day::passwordRow() {
  std::string pw = oneOf({"7351", "2468", "abc", "98765", "1357"});
  const panel::PanelRow* row = panel::rowFor("password");
  if (!sequence({"panel tap " + std::to_string(row->section) + " " + std::to_string(row->row),
                 "wait 0.5", "type " + pw}))
    return;
  bool confirm = chance(85);
  exec(confirm ? "press 确定" : "press 取消", [&] {
    if (!confirm) return;
    Settings next = model_;
    if (learnSetting(next, "password", pw)) savedNow(next);
  });
}

// The daily-window editor, in schedule mode: change a window or add one,
// through its three dialogs (start, end, show or hide).
void Day::windowEditor() {
  if (model_.manual || !model_.windowsKnown) return;
  std::vector<Window> rows = byStart(model_.windows);
  long n = long(rows.size());
  long row = long(pick(std::uint64_t(n < 3 ? n + 1 : n)));
  long start = long(pick(24 * 60));
  long end = chance(10) ? start : (start + 1 + long(pick(240))) % 1440;
  bool hide = chance(40);
  if (!sequence({"panel tap " + std::to_string(kWindows) + " " + std::to_string(row), "wait 0.5",
                 "time " + clock(start), "press 确定", "wait 0.5", "time " + clock(end),
                 "press 确定", "wait 0.5"}))
    return;
  std::vector<Window> after = rows;
  if (row < n)
    after[std::size_t(row)] = Window{start, end, hide};
  else
    after.push_back(Window{start, end, hide});
  bool ok = acceptable(after);
  bool cancel = chance(10);
  bool pressed = exec(cancel ? "press 取消"
                      : hide ? "press 隐藏"
                             : "press 显示",
                      [&] {
                        if (cancel || !ok) return;
                        Settings next = model_;
                        next.windows = byStart(after);
                        savedNow(next);
                      });
  if (pressed && !cancel && !ok) exec("press 好");  // the tip that says why
}

// Swipe-delete: a secret's row (the row shows whose it is), or a window in
// schedule mode (the last one cannot go).
void Day::swipeDelete() {
  if (chance(50) && !model_.manual && model_.windowsKnown) {
    std::vector<Window> rows = byStart(model_.windows);
    long row = long(pick(rows.size() + 1));
    exec("panel delete " + std::to_string(kWindows) + " " + std::to_string(row), [&] {
      Settings next = model_;
      rows.erase(rows.begin() + row);
      next.windows = rows;
      savedNow(next);
    });
    return;
  }
  long row = 1 + long(pick(model_.secrets.size() + 1));
  std::optional<World::ShownRow> shown = world_.panelRow(panel::kSecrets, row);
  std::string who = shown ? shown->detail : "";
  exec("panel delete " + std::to_string(panel::kSecrets) + " " + std::to_string(row), [&] {
    Settings next = model_;
    next.secrets.erase(who);
    savedNow(next);
  });
}

}  // namespace qbsim::swarm
