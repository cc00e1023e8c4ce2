#include "panel/panel_rows.hpp"

#include <algorithm>

#include "ui/colors.hpp"

namespace panel {
namespace {

using enum RowKind;
using enum ShownIn;

// In the order the table shows them. The notify rows run from the loudest
// down, so their values count down as the rows go.
constexpr PanelRow kRows[] = {
    {kVisibility, 0, Both, Choice, "visibilityControl", 0, "手动控制", "轻晃 / 长按 + 切后台隐藏",
     "hand.tap.fill", ui::kSystemBlue, ""},
    {kVisibility, 1, Both, Choice, "visibilityControl", 1, "定时控制", "到点自动显示或隐藏",
     "clock.fill", ui::kSystemOrange, ""},
    {kWake, 0, Manual, Switch, "shakeShow", 0, "轻晃显示", "触发后需通过验证",
     "iphone.radiowaves.left.and.right", ui::kSystemGreen, "onShakeShowSwitch:"},
    {kWake, 1, Manual, Switch, "longPressUnlock", 0, "长按顶栏", "会话 / 聊天页导航栏约 0.7 秒",
     "hand.tap.fill", ui::kSystemBlue, "onLongPressSwitch:"},
    {kHide, 0, Manual, Switch, "shakeHide", 0, "轻晃隐藏", "无需验证，立刻藏起",
     "iphone.radiowaves.left.and.right", ui::kSystemOrange, "onShakeHideSwitch:"},
    {kHide, 0, Schedule, Window, "dailyWindows", 0, "时段", "", "clock.fill", ui::kSystemOrange,
     ""},
    {kNotify, 0, Both, Choice, "secretNotifyMode", 2, "铃声", "隐藏时：微信内/桌面/锁屏都提醒",
     "bell.fill", ui::kSystemGreen, ""},
    {kNotify, 1, Both, Choice, "secretNotifyMode", 1, "震动", "隐藏时：三处提醒但只震动",
     "iphone.radiowaves.left.and.right", ui::kSystemOrange, ""},
    {kNotify, 2, Both, Choice, "secretNotifyMode", 0, "不通知", "隐藏时：三处都不通知",
     "bell.slash.fill", ui::kSystemGray, ""},
    {kCalls, 0, Both, Switch, "voipVoiceNotify", 0, "微信电话", "语音来电振铃与接听界面",
     "phone.fill", ui::kSystemGreen, "onVoipVoiceSwitch:"},
    {kCalls, 1, Both, Switch, "voipVideoNotify", 0, "微信视频", "视频来电振铃与接听界面",
     "video.fill", ui::kSystemBlue, "onVoipVideoSwitch:"},
    {kPanelAuth, 0, Both, Choice, "panelAuthMode", 0, "口令", "进控制台输口令", "key.fill",
     ui::kSystemIndigo, ""},
    {kPanelAuth, 1, Both, Choice, "panelAuthMode", 1, "面容 / 指纹", "进控制台验面容", "faceid",
     ui::kSystemTeal, ""},
    {kPanelAuth, 2, Both, Password, "password", 0, "修改口令", "••••", "key.fill",
     ui::kSystemIndigo, ""},
    {kRevealAuth, 0, Both, Choice, "revealAuthMode", 0, "口令", "显示密友时输口令", "key.fill",
     ui::kSystemIndigo, ""},
    {kRevealAuth, 1, Both, Choice, "revealAuthMode", 1, "面容 / 指纹", "显示密友时验面容", "faceid",
     ui::kSystemTeal, ""},
    {kSecrets, 0, Both, AddSecret, "", 0, "添加密友", "", "plus", ui::kSystemGreen, ""},
    {kSecrets, 1, Both, Secret, "secrets", 0, "", "", "", {}, ""},
};

bool repeats(const PanelRow& r) { return r.kind == Window || r.kind == Secret; }

}  // namespace

std::span<const PanelRow> panelRows() { return kRows; }

bool isShown(const PanelRow& r, bool schedule) {
  return r.shownIn == Both || (r.shownIn == Schedule) == schedule;
}

const PanelRow* rowAt(long section, long row, bool schedule) {
  for (const PanelRow& r : kRows)
    if (r.section == section && isShown(r, schedule) &&
        (r.row == row || (repeats(r) && row > r.row)))
      return &r;
  return nullptr;
}

const PanelRow* rowFor(std::string_view key, long value) {
  const PanelRow* first = nullptr;
  for (const PanelRow& r : kRows) {
    if (r.key != key) continue;
    if (r.kind == Choice && r.value == value) return &r;
    if (!first) first = &r;
  }
  return first;
}

const PanelRow* rowWithAction(std::string_view action) {
  for (const PanelRow& r : kRows)
    if (!action.empty() && r.action == action) return &r;
  return nullptr;
}

long maxChoice(std::string_view key) {
  long max = -1;
  for (const PanelRow& r : kRows)
    if (r.kind == Choice && r.key == key) max = std::max(max, r.value);
  return max;
}

}  // namespace panel
