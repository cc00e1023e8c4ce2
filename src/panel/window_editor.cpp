// The daily-window editor: three dialogs, one after the other (start, end,
// mode), each presented 0.4 s after the previous one has closed. Only the
// last step writes; the rules and their messages are QBConfig's.
#include <memory>

#include "core/config.hpp"
#include "panel/panel_controller.hpp"
#include "panel/panel_table.hpp"
#include "rt/ownership.hpp"
#include "rt/send.hpp"
#include "sys/queue.hpp"
#include "triggers/schedule.hpp"
#include "ui/alerts.hpp"
#include "ui/pickers.hpp"
#include "ui/tables.hpp"

namespace panel {
namespace {

using core::QBConfig;

// What the sequence carries from step to step. The panel is held weakly: if
// it has gone (the app left) by the next step, the sequence ends there.
struct Edit {
  rt::Weak panel;
  long index, start, end, mode;
  bool isAdd;
  long chosenStart = 0, chosenEnd = 0;
};

void finish(const Edit& e, long mode) {
  rt::Strong panel = e.panel.lock();
  if (!panel) return;
  QBConfig& c = QBConfig::shared();
  std::string message;
  bool ok = e.isAdd
                ? c.addDailyWindowWithStart(e.chosenStart, e.chosenEnd, mode, &message)
                : c.updateDailyWindowAtIndex(e.index, e.chosenStart, e.chosenEnd, mode, &message);
  if (!ok) {
    QBPanelController::showTip(panel.get(), message.empty() ? "时间无效" : message);
    return;
  }
  triggers::QBSchedule::applyNow();
  reloadSectionOf(panel.get(), kHide);
}

void askMode(std::shared_ptr<Edit> e) {
  rt::Strong panel = e->panel.lock();
  if (!panel) return;
  QBPanelController::pickWindowMode(panel.get(), e->mode, "③ 这段时间要",
                                    [e](long mode) { finish(*e, mode); });
}

void askEnd(std::shared_ptr<Edit> e) {
  rt::Strong panel = e->panel.lock();
  if (!panel) return;
  QBPanelController::pickMinute(panel.get(), e->end, e->isAdd ? "② 选择结束时间" : "② 修改结束时间",
                                [e](long end) {
                                  e->chosenEnd = end;
                                  QBPanelController::presentNextAfterDelay([e] { askMode(e); });
                                });
}

}  // namespace

void QBPanelController::editDailyWindowAtIndex(rt::Id self, long index, long start, long end,
                                               long mode, bool isAdd) {
  auto e = std::make_shared<Edit>(Edit{rt::Weak(self), index, start, end, mode, isAdd});
  pickMinute(self, start, isAdd ? "① 选择开始时间" : "① 修改开始时间", [e](long chosen) {
    e->chosenStart = chosen;
    presentNextAfterDelay([e] { askEnd(e); });
  });
}

void QBPanelController::pickMinute(rt::Id self, long minutes, const std::string& title,
                                   std::function<void(long)> handler) {
  // The line breaks only make room for the wheels.
  rt::Id alert = ui::makeAlert(title, "\n\n\n\n\n\n\n\n\n");
  rt::Id picker = ui::makeTimePicker(minutes / 60, minutes % 60, "zh_CN");
  ui::addPickerToAlert(alert, picker, ui::PickerLayout{});
  ui::addAction(alert, "确定", ui::ActionStyle::Default, [picker, handler] {
    long hour = 0, minute = 0;
    ui::pickerTime(picker, hour, minute);
    handler(hour * 60 + minute);
  });
  ui::addAction(alert, "取消", ui::ActionStyle::Cancel, nullptr);
  ui::present(self, alert, true);
}

void QBPanelController::pickWindowMode(rt::Id self, long, const std::string& title,
                                       std::function<void(long)> handler) {
  rt::Id alert = ui::makeAlert(title, "选择「显示」或「隐藏」。可跨午夜。时段之间不能重叠。");
  ui::addAction(alert, "显示", ui::ActionStyle::Default, [handler] { handler(0); });
  ui::addAction(alert, "隐藏", ui::ActionStyle::Default, [handler] { handler(1); });
  ui::addAction(alert, "取消", ui::ActionStyle::Cancel, nullptr);
  ui::present(self, alert, true);
}

void QBPanelController::askText(rt::Id self, const std::string& title, bool secure,
                                const std::string& placeholder,
                                std::function<void(const std::string&)> handler) {
  rt::Id alert = ui::makeAlert(title, "");
  ui::addTextField(alert, ui::TextFieldSpec{placeholder, secure, false});
  ui::addAction(alert, "取消", ui::ActionStyle::Cancel, nullptr);
  ui::addAction(alert, "确定", ui::ActionStyle::Default,
                [alert, handler] { handler(ui::textFieldText(alert, 0)); });
  ui::present(self, alert, true);
}

void QBPanelController::presentNextAfterDelay(std::function<void()> block) {
  if (!block) return;
  // Should the panel close meanwhile (the app left), the next step finds it gone.
  sys::after(kNextDialogDelay_s, std::move(block));
}

}  // namespace panel
