#include "panel/panel_table.hpp"

#include <vector>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/contact_info.hpp"
#include "notify/notify_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "panel/panel_rows.hpp"
#include "panel/panel_settings.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sys/process_state.hpp"
#include "triggers/schedule.hpp"
#include "ui/tables.hpp"

namespace panel {
namespace {

using core::QBConfig;

QBConfig& config() { return QBConfig::shared(); }
bool scheduleMode() { return config().usesScheduleVisibility(); }
long windowCount() { return long(config().normalizedDailyWindows().size()); }

ui::CellSpec baseCell(const PanelRow& r, const std::string& title, ui::CellStyle style) {
  ui::CellSpec c;
  c.style = style;
  c.title = title;
  c.detail = r.detail;
  c.titleFont = {16, ui::Weight::Medium};
  c.detailFont = {12, ui::Weight::Regular};
  c.detailColor = ui::kSecondaryLabel;
  c.image = QBPanelController::iconImage(r.symbol, r.tint, ui::withAlpha(r.tint, 0.14));
  return c;
}

rt::Id checkCell(const PanelRow& r) {
  ui::CellSpec c = baseCell(r, r.title, ui::CellStyle::Subtitle);
  c.accessory = currentChoice(r.key) == r.value ? ui::Accessory::Checkmark : ui::Accessory::None;
  c.hasTint = true;
  c.tint = ui::kSystemGreen;
  return ui::makeCell(c);
}

rt::Id switchCell(rt::Id panel, const PanelRow& r) {
  ui::CellSpec c = baseCell(r, r.title, ui::CellStyle::Subtitle);
  c.detailLines = 1;
  c.selectionHighlight = false;
  rt::SEL sel = rt::sel(r.action);
  c.accessoryView = ui::makeSwitch(switchIsOn(r.key), ui::kSystemGreen,
                                   [panel, sel](rt::Id sw) { rt::send<void>(panel, sel, sw); });
  return ui::makeCell(c);
}

// The green "add" rows: default style, semibold green title, a plus icon.
rt::Id addCell(const char* title) {
  PanelRow plus{};
  plus.detail = "";
  plus.symbol = "plus";
  plus.tint = ui::kSystemGreen;
  ui::CellSpec c = baseCell(plus, title, ui::CellStyle::Default);
  c.titleFont = {16, ui::Weight::Semibold};
  c.titleColor = ui::kSystemGreen;
  c.accessory = ui::Accessory::DisclosureIndicator;
  return ui::makeCell(c);
}

rt::Id windowCell(const PanelRow& r, long i) {
  core::DailyWindows windows = config().normalizedDailyWindows();
  ui::CellSpec c =
      baseCell(r, std::string(r.title) + " " + std::to_string(i + 1), ui::CellStyle::Value1);
  c.detail =
      i < long(windows.size()) ? QBConfig::stringFromWindow(windows[std::size_t(i)].toValue()) : "";
  c.detailFont = {17, ui::Weight::Regular};
  c.accessory = ui::Accessory::DisclosureIndicator;
  return ui::makeCell(c);
}

rt::Id passwordCell(const PanelRow& r) {
  ui::CellSpec c = baseCell(r, r.title, ui::CellStyle::Value1);
  c.image = QBPanelController::iconImage(r.symbol, r.tint, ui::withAlpha(r.tint, 0.12));
  c.detailFont = {17, ui::Weight::Regular};
  c.detailColor = ui::kTertiaryLabel;
  c.accessory = ui::Accessory::DisclosureIndicator;
  return ui::makeCell(c);
}

rt::Id avatarImage(rt::Id avatar) {
  if (!avatar) return nullptr;
  return ui::renderImage({44, 44}, 0, true, {ui::DrawImage{avatar, {{0, 0}, {44, 44}}, 12}});
}

// The secret each row showed when its cell was made: a swipe deletes the one
// the user sees, though the list may have changed behind the table since.
struct ShownSecrets {
  std::vector<std::string> byRow;  // row 1 first
};
std::vector<std::string>& shownSecrets() { return sys::state<ShownSecrets>().byRow; }

rt::Id secretCell(long row) {
  std::string username = secretAtRow(row);
  std::vector<std::string>& shown = shownSecrets();
  if (long(shown.size()) < row) shown.resize(std::size_t(row));
  shown[std::size_t(row - 1)] = username;
  host::QBContactInfo info = host::QBContactInfo::infoForUsername(username);
  ui::CellSpec c;
  c.style = ui::CellStyle::Subtitle;
  c.title = info.displayName;
  c.titleFont = {16, ui::Weight::Medium};
  c.detail = username;
  c.image = avatarImage(info.avatar);
  if (c.image) c.imageCornerRadius = 12;
  return ui::makeCell(c);
}

rt::Id cellIn(rt::Id panel, long section, long row) {
  const PanelRow* r = rowAt(section, row, scheduleMode());
  if (!r) return ui::makeCell(ui::CellSpec{});
  switch (r->kind) {
    case RowKind::Choice:
      return checkCell(*r);
    case RowKind::Switch:
      return switchCell(panel, *r);
    case RowKind::Password:
      return passwordCell(*r);
    case RowKind::Window:
      return row < windowCount() ? windowCell(*r, row) : addCell("添加时段");
    case RowKind::AddSecret:
      return addCell(r->title);
    case RowKind::Secret:
      return secretCell(row);
  }
  return ui::makeCell(ui::CellSpec{});
}

void reloadOnly(rt::Id panel, long section) { reloadSectionOf(panel, section); }

}  // namespace

bool otherSectionsChanged(rt::Id table, long section) {
  for (long s = 0; s < kSections; ++s)
    if (s != section && ui::shownRowCount(table, s) != rowsInSection(s)) return true;
  return false;
}

void reloadSectionOf(rt::Id panel, long section, ui::RowAnimation animation) {
  rt::Id table = rt::send<rt::Id>(panel, "tableView");
  // A list or mode changed behind the table (not through this panel) leaves
  // other sections off their shown counts, and UIKit would throw into the
  // host on a one-section update: show the whole table anew.
  if (otherSectionsChanged(table, section))
    rt::send<void>(table, "reloadData");
  else
    ui::reloadSection(table, section, animation);
}

long rowsInSection(long section) {
  bool schedule = scheduleMode();
  long n = 0;
  for (const PanelRow& r : panelRows()) {
    if (r.section != section || !isShown(r, schedule)) continue;
    if (r.kind == RowKind::Window)  // the windows, then an add row while there is room
      n += windowCount() < kMaxWindows ? windowCount() + 1 : windowCount();
    else if (r.kind == RowKind::Secret)
      n += config().secretCount();
    else
      ++n;
  }
  return n;
}

double rowHeight(long section, long row) {
  const PanelRow* r = rowAt(section, row, scheduleMode());
  return r && r->kind == RowKind::Secret ? kSecretRowHeight : kRowHeight;
}

std::string headerTitle(long section) {
  bool schedule = scheduleMode();
  switch (section) {
    case kVisibility:
      return "显示控制（二选一）";
    case kWake:
      return schedule ? "" : "唤醒方式";
    case kHide:
      return schedule ? "每日时段" : "隐藏方式";
    case kNotify:
      return "消息通知";
    case kCalls:
      return "通话通知";
    case kPanelAuth:
      return "控制台验证方式";
    case kRevealAuth:
      return "密友显示验证方式";
    case kSecrets:
      return "密友名单";
  }
  return "";
}

std::string footerTitle(long section) {
  bool schedule = scheduleMode();
  switch (section) {
    case kVisibility:
      return "手动：轻晃/"
             "长按控制。定时：到点自动显示或隐藏，并禁用手动唤醒与切后台隐藏，避免冲突。";
    case kWake:
      return schedule ? "" : "触发显示后按「密友显示验证方式」确认。";
    case kHide:
      return schedule ? "每段可选「显示」或「隐藏」，最多 3 "
                        "段，可跨午夜。时段不可重叠（相邻端点可以，如 08:00–13:00 与 "
                        "13:00–15:00）。未命中任何时段时默认隐藏。左滑可删除（至少保留 1 个）。"
                      : "冷启动与离开微信在手动模式下自动隐藏。";
    case kNotify:
      return "「显示」=正常好友。「隐藏」时：选铃声/震动 → 微信内+桌面+锁屏都通知；选不通知 → "
             "三处都不通知。";
    case kCalls:
      return "默认关闭。关闭后走微信官方自动忽略 + 静默 "
             "UI/CallKit（不打断视频协议，避免闪退）。电话+视频都关时最稳。"
             "自己拨出不受影响。";
    case kPanelAuth:
      return "仅影响进入控制台。口令或面容二选一，首次默认口令。";
    case kRevealAuth:
      return "仅手动模式显示密友时生效；定时自动显示无需验证。";
    case kSecrets:
      return "左滑可删除。";
  }
  return "";
}

rt::Id cellFor(rt::Id panel, long section, long row) { return cellIn(panel, section, row); }

std::string secretAtRow(long row) {
  if (row < 1) return "";
  long i = 1;
  for (const std::string& u : config().secretSnapshot())
    if (i++ == row) return u;
  return "";
}

void didSelect(rt::Id panel, long section, long row) {
  const PanelRow* r = rowAt(section, row, scheduleMode());
  if (!r) return;
  switch (r->kind) {
    case RowKind::Choice:
      changeSetting(r->key, base::Value(r->value), Scope::App);
      // The visibility mode reshapes the wake and hide sections.
      if (section == kVisibility)
        QBPanelController::reload(panel);
      else
        reloadOnly(panel, section);
      return;
    case RowKind::Password:
      QBPanelController::askText(panel, "设置新口令", true, "至少 4 位",
                                 [](const std::string& text) {
                                   // A short entry is dropped without a word, on purpose.
                                   changeSetting("password", base::Value(text), Scope::App);
                                 });
      return;
    case RowKind::Window: {
      core::DailyWindows windows = config().normalizedDailyWindows();
      if (row < long(windows.size())) {
        const core::DailyWindow& w = windows[std::size_t(row)];
        QBPanelController::editDailyWindowAtIndex(panel, row, w.start, w.end,
                                                  QBConfig::modeFromWindow(w.toValue()), false);
      } else {
        QBPanelController::editDailyWindowAtIndex(panel, kNoIndex, kNewWindowStart, kNewWindowEnd,
                                                  0, true);
      }
      return;
    }
    case RowKind::AddSecret:
      QBPanelController::pickFromSessions(panel);
      return;
    case RowKind::Switch:  // the switch acts, not the row
    case RowKind::Secret:
      return;
  }
}

bool canEdit(long section, long row) {
  if (section == kSecrets) return row >= 1 && row < rowsInSection(kSecrets);
  if (section == kHide && scheduleMode()) {
    long n = windowCount();
    return n > 1 && row < n;
  }
  return false;
}

void deleteRow(rt::Id panel, long section, long row, const std::function<void(bool)>& done) {
  rt::Id table = rt::send<rt::Id>(panel, "tableView");
  if (section == kHide) {
    std::string message;
    if (!config().removeDailyWindowAtIndex(row, &message)) {
      QBPanelController::showTip(panel, message.empty() ? "无法删除" : message);
      done(false);
      return;
    }
    triggers::QBSchedule::applyNow();
    reloadSectionOf(panel, kHide, ui::RowAnimation::Automatic);
    done(true);
    return;
  }
  long shown = ui::shownRowCount(table, section);
  std::vector<std::string>& seen = shownSecrets();
  bool wasShown = row >= 1 && row <= long(seen.size());
  config().removeSecretUser(wasShown ? seen[std::size_t(row - 1)] : secretAtRow(row));
  QBPanelController::secretListChanged();
  // A list changed behind the table's back (not through this panel) cannot
  // lose one row cleanly, and UIKit would throw into the host: show it anew.
  if (shown == rowsInSection(kSecrets) + 1 && !otherSectionsChanged(table, section)) {
    if (wasShown) seen.erase(seen.begin() + (row - 1));
    ui::deleteRow(table, section, row, ui::RowAnimation::Automatic);
  } else {
    reloadSectionOf(panel, section, ui::RowAnimation::Automatic);
  }
  done(true);
}

}  // namespace panel
