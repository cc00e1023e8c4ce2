#include "panel/panel_table.hpp"

#include <vector>

#include "base/utf8.hpp"
#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/contact_info.hpp"
#include "notify/notify_hooks.hpp"
#include "panel/panel_controller.hpp"
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

struct Row {
  std::string title, detail, symbol;
  ui::Color tint;
};

ui::CellSpec baseCell(const Row& r, ui::CellStyle style) {
  ui::CellSpec c;
  c.style = style;
  c.title = r.title;
  c.detail = r.detail;
  c.titleFont = {16, ui::Weight::Medium};
  c.detailFont = {12, ui::Weight::Regular};
  c.detailColor = ui::kSecondaryLabel;
  c.image = QBPanelController::iconImage(r.symbol, r.tint, ui::withAlpha(r.tint, 0.14));
  return c;
}

rt::Id checkCell(const Row& r, bool checked) {
  ui::CellSpec c = baseCell(r, ui::CellStyle::Subtitle);
  c.accessory = checked ? ui::Accessory::Checkmark : ui::Accessory::None;
  c.hasTint = true;
  c.tint = ui::kSystemGreen;
  return ui::makeCell(c);
}

rt::Id switchCell(rt::Id panel, const Row& r, bool on, const char* action) {
  ui::CellSpec c = baseCell(r, ui::CellStyle::Subtitle);
  c.detailLines = 1;
  c.selectionHighlight = false;
  rt::SEL sel = rt::sel(action);
  c.accessoryView = ui::makeSwitch(on, ui::kSystemGreen,
                                   [panel, sel](rt::Id sw) { rt::send<void>(panel, sel, sw); });
  return ui::makeCell(c);
}

// The green "add" rows: default style, semibold green title, a plus icon.
rt::Id addCell(const char* title) {
  ui::CellSpec c = baseCell(Row{title, "", "plus", ui::kSystemGreen}, ui::CellStyle::Default);
  c.titleFont = {16, ui::Weight::Semibold};
  c.titleColor = ui::kSystemGreen;
  c.accessory = ui::Accessory::DisclosureIndicator;
  return ui::makeCell(c);
}

rt::Id windowCell(long i) {
  core::DailyWindows windows = config().normalizedDailyWindows();
  std::string detail =
      i < long(windows.size()) ? QBConfig::stringFromWindow(windows[std::size_t(i)].toValue()) : "";
  ui::CellSpec c =
      baseCell(Row{"时段 " + std::to_string(i + 1), detail, "clock.fill", ui::kSystemOrange},
               ui::CellStyle::Value1);
  c.detailFont = {17, ui::Weight::Regular};
  c.accessory = ui::Accessory::DisclosureIndicator;
  return ui::makeCell(c);
}

rt::Id passwordCell() {
  Row r{"修改口令", "••••", "key.fill", ui::kSystemIndigo};
  ui::CellSpec c = baseCell(r, ui::CellStyle::Value1);
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
  QBConfig& cfg = config();
  switch (section) {
    case kVisibility:
      return row == 0
                 ? checkCell(
                       {"手动控制", "轻晃 / 长按 + 切后台隐藏", "hand.tap.fill", ui::kSystemBlue},
                       cfg.visibilityControlMode() == 0)
                 : checkCell({"定时控制", "到点自动显示或隐藏", "clock.fill", ui::kSystemOrange},
                             cfg.visibilityControlMode() == 1);
    case kWake:
      return row == 0 ? switchCell(panel,
                                   {"轻晃显示", "触发后需通过验证",
                                    "iphone.radiowaves.left.and.right", ui::kSystemGreen},
                                   cfg.shakeShowEnabled(), "onShakeShowSwitch:")
                      : switchCell(panel,
                                   {"长按顶栏", "会话 / 聊天页导航栏约 0.7 秒", "hand.tap.fill",
                                    ui::kSystemBlue},
                                   cfg.longPressUnlockEnabled(), "onLongPressSwitch:");
    case kHide:
      if (!scheduleMode())
        return switchCell(panel,
                          {"轻晃隐藏", "无需验证，立刻藏起", "iphone.radiowaves.left.and.right",
                           ui::kSystemOrange},
                          cfg.shakeHideEnabled(), "onShakeHideSwitch:");
      return row < windowCount() ? windowCell(row) : addCell("添加时段");
    case kNotify: {
      static const Row rows[] = {
          {"铃声", "隐藏时：微信内/桌面/锁屏都提醒", "bell.fill", ui::kSystemGreen},
          {"震动", "隐藏时：三处提醒但只震动", "iphone.radiowaves.left.and.right",
           ui::kSystemOrange},
          {"不通知", "隐藏时：三处都不通知", "bell.slash.fill", ui::kSystemGray}};
      return checkCell(rows[row], cfg.secretNotifyMode() == 2 - row);
    }
    case kCalls:
      return row == 0
                 ? switchCell(
                       panel,
                       {"微信电话", "语音来电振铃与接听界面", "phone.fill", ui::kSystemGreen},
                       cfg.voipVoiceNotifyEnabled(), "onVoipVoiceSwitch:")
                 : switchCell(panel,
                              {"微信视频", "视频来电振铃与接听界面", "video.fill", ui::kSystemBlue},
                              cfg.voipVideoNotifyEnabled(), "onVoipVideoSwitch:");
    case kPanelAuth:
      if (row == 2) return passwordCell();
      return row == 0 ? checkCell({"口令", "进控制台输口令", "key.fill", ui::kSystemIndigo},
                                  cfg.panelAuthMode() == 0)
                      : checkCell({"面容 / 指纹", "进控制台验面容", "faceid", ui::kSystemTeal},
                                  cfg.panelAuthMode() == 1);
    case kRevealAuth:
      return row == 0 ? checkCell({"口令", "显示密友时输口令", "key.fill", ui::kSystemIndigo},
                                  cfg.revealAuthMode() == 0)
                      : checkCell({"面容 / 指纹", "显示密友时验面容", "faceid", ui::kSystemTeal},
                                  cfg.revealAuthMode() == 1);
    case kSecrets:
      return row == 0 ? addCell("添加密友") : secretCell(row);
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
  switch (section) {
    case kVisibility:
      return 2;
    case kWake:
      return schedule ? 0 : 2;
    case kHide: {
      if (!schedule) return 1;
      long n = windowCount();
      return n < kMaxWindows ? n + 1 : n;
    }
    case kNotify:
      return 3;
    case kCalls:
      return 2;
    case kPanelAuth:
      return 3;
    case kRevealAuth:
      return 2;
    case kSecrets:
      return config().secretCount() + 1;
  }
  return 0;
}

double rowHeight(long section, long row) {
  return section == kSecrets && row >= 1 ? kSecretRowHeight : kRowHeight;
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
  QBConfig& cfg = config();
  switch (section) {
    case kVisibility:
      cfg.setVisibilityControlMode(row == 0 ? 0 : 1);
      cfg.save();
      QBPanelController::reload(panel);
      if (cfg.usesScheduleVisibility()) triggers::QBSchedule::applyNow();
      return;
    case kHide: {
      if (!cfg.usesScheduleVisibility()) return;
      core::DailyWindows windows = cfg.normalizedDailyWindows();
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
    case kNotify:
      cfg.setSecretNotifyMode(2 - row);
      cfg.setBackgroundNotifyEnabled(row != 2);
      cfg.save();
      reloadOnly(panel, kNotify);
      return;
    case kPanelAuth:
      if (row == 2) {
        QBPanelController::askText(panel, "设置新口令", true, "至少 4 位",
                                   [](const std::string& text) {
                                     // A short entry is dropped without a word, on purpose;
                                     // its length is NSString's, in UTF-16 units.
                                     if (base::utf16Length(text) < kMinPasswordLength) return;
                                     config().setPassword(text);
                                     config().save();
                                   });
        return;
      }
      cfg.setPanelAuthMode(row);
      cfg.save();
      reloadOnly(panel, kPanelAuth);
      return;
    case kRevealAuth:
      cfg.setRevealAuthMode(row);
      cfg.save();
      reloadOnly(panel, kRevealAuth);
      return;
    case kSecrets:
      if (row == 0) QBPanelController::pickFromSessions(panel);
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
