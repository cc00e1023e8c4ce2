#include "panel/panel_controller.hpp"

#include <optional>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/contact_info.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "notify/notify_hooks.hpp"
#include "panel/contact_pick_controller.hpp"
#include "panel/panel_flow.hpp"
#include "panel/panel_rows.hpp"
#include "panel/panel_settings.hpp"
#include "panel/panel_table.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/log.hpp"
#include "sys/queue.hpp"
#include "triggers/auth.hpp"
#include "triggers/schedule.hpp"
#include "ui/alerts.hpp"
#include "ui/navigation.hpp"
#include "ui/tables.hpp"

namespace panel {
namespace {

using core::QBConfig;
using rt::Id;
using rt::SEL;

void clearSuppressFlags() {
  QBConfig& c = QBConfig::shared();
  c.setSuppressAutoLock(false);
  c.setSuppressSessionApply(false);
}

Id tableOf(Id panel) { return rt::send<Id>(panel, "tableView"); }
long sectionOf(Id indexPath) { return rt::indexPathSection(indexPath); }
long rowOf(Id indexPath) { return rt::indexPathRow(indexPath); }

void buildHeader(Id self) {
  rt::CGRect bounds = rt::send<rt::CGRect>(rt::send<Id>(self, "view"), "bounds");
  double width = bounds.size.width > 0 ? bounds.size.width : ui::screenWidth();
  ui::setStackedHeader(
      tableOf(self), width, 20,
      {{"密友", {28, ui::Weight::Bold}, ui::kLabel},
       {"会话 · 通讯录 · 朋友圈 · 最近转发一并隐藏", {13, ui::Weight::Medium}, ui::kSecondaryLabel},
       {"我 → 设置 → 关于微信 → 连点版本号 5 次打开本页",
        {12, ui::Weight::Regular},
        ui::kTertiaryLabel}});
}

// --- The runtime class's methods.

void viewDidLoad(Id self, SEL cmd) {
  rt::Method super = rt::getInstanceMethod(rt::getClass("UITableViewController"), cmd);
  if (super) rt::call<void>(rt::methodImplementation(super), self, cmd);
  rt::send<void>(self, "setTitle:", rt::str(""));
  ui::setViewBackground(self, ui::kGroupedBackground);
  ui::setNavigationTint(rt::send<Id>(self, "navigationController"), ui::kSystemGreen);
  ui::styleTable(tableOf(self), ui::TableLook{ui::kGroupedBackground, 56, 56, true});
  ui::setLeftBarButton(self, "完成", ui::BarButtonStyle::Done,
                       [self] { QBPanelController::closeAndLock(self); });
  buildHeader(self);
}

long numberOfSections(Id, SEL, Id) { return kSections; }
long numberOfRows(Id, SEL, Id, long section) { return rowsInSection(section); }
double heightForRow(Id, SEL, Id, Id ip) { return rowHeight(sectionOf(ip), rowOf(ip)); }
Id headerForSection(Id, SEL, Id, long section) {
  std::string t = headerTitle(section);
  return t.empty() ? nullptr : rt::str(t);
}
Id footerForSection(Id, SEL, Id, long section) {
  std::string t = footerTitle(section);
  return t.empty() ? nullptr : rt::str(t);
}
// UIKit's calls that act or build cells are guarded: a failure of ours gives
// an empty cell or a row that does nothing, never an exception in UIKit.
Id cellForRow(Id self, SEL, Id, Id ip) {
  Id cell = host::guarded(
      "[QB] QBPanelController tableView:cellForRowAtIndexPath: ex: %@",
      [&] { return cellFor(self, sectionOf(ip), rowOf(ip)); }, Id{});
  return cell ? cell : ui::makeCell(ui::CellSpec{});  // UIKit raises on a nil cell
}
void didSelectRow(Id self, SEL, Id table, Id ip) {
  host::guarded("[QB] QBPanelController tableView:didSelectRowAtIndexPath: ex: %@", [&] {
    rt::send<void>(table, "deselectRowAtIndexPath:animated:", ip, true);
    didSelect(self, sectionOf(ip), rowOf(ip));
  });
}
bool canEditRow(Id, SEL, Id, Id ip) { return canEdit(sectionOf(ip), rowOf(ip)); }
Id trailingSwipe(Id self, SEL, Id, Id ip) {
  long section = sectionOf(ip), row = rowOf(ip);
  if (!canEdit(section, row)) return nullptr;
  return ui::destructiveSwipe("删除", [self, section, row](std::function<void(bool)> completion) {
    host::guarded("[QB] QBPanelController swipe delete ex: %@",
                  [&] { deleteRow(self, section, row, completion); });
  });
}
void commitEditing(Id self, SEL, Id, long style, Id ip) {
  constexpr long kDeleteStyle = 1;  // UITableViewCellEditingStyleDelete
  host::guarded("[QB] QBPanelController tableView:commitEditingStyle:forRowAtIndexPath: ex: %@",
                [&] {
                  if (style == kDeleteStyle && canEdit(sectionOf(ip), rowOf(ip)))
                    deleteRow(self, sectionOf(ip), rowOf(ip), [](bool) {});
                });
}

// The switches save at once (the call switches also re-sync the host's call
// auto-ignore); the table is left as it is.
void onSwitch(Id, SEL cmd, Id sw) {
  host::guarded("[QB] QBPanelController switch ex: %@", [cmd, sw] {
    if (const PanelRow* row = rowWithAction(rt::selName(cmd)))
      changeSetting(row->key, base::Value(ui::switchIsOn(sw)), Scope::App);
  });
}

void closeAndLockImp(Id self, SEL) { QBPanelController::closeAndLock(self); }
void reloadImp(Id self, SEL) { QBPanelController::reload(self); }
void showTipImp(Id self, SEL, Id message) {
  QBPanelController::showTip(self, rt::asString(message).value_or(""));
}
void pickFromSessionsImp(Id self, SEL) { QBPanelController::pickFromSessions(self); }
void presentFromImp(Id, SEL, Id target) { QBPanelController::presentFrom(target); }
void presentPanelOnImp(Id, SEL, Id target) { QBPanelController::presentPanelOn(target); }
Id topVCImp(Id, SEL) { return QBPanelController::topVC(); }

std::vector<PickItem> sessionItems() {
  std::vector<PickItem> out;
  for (const hiding::SessionItem& s : hiding::QBSessionHooks::listSessionItems())
    out.push_back({s.username, s.displayName, s.nickname, s.remark});
  return out;
}

}  // namespace

void QBPanelController::registerRuntimeClass() {
  QBContactPickController::registerRuntimeClass();
  installPanelDeparture();
  if (rt::getClass("QBPanelController")) return;
  rt::Class cls = rt::allocateClassPair(rt::getClass("UITableViewController"), "QBPanelController");
  if (!cls) return;
  rt::registerClassPair(cls);
  rt::addClassMethod(cls, rt::sel("presentFrom:"), presentFromImp);
  rt::addClassMethod(cls, rt::sel("presentPanelOn:"), presentPanelOnImp);
  rt::addClassMethod(cls, rt::sel("topVC"), topVCImp);
  rt::addMethod(cls, rt::sel("viewDidLoad"), viewDidLoad);
  rt::addMethod(cls, rt::sel("numberOfSectionsInTableView:"), numberOfSections);
  rt::addMethod(cls, rt::sel("tableView:numberOfRowsInSection:"), numberOfRows);
  rt::addMethod(cls, rt::sel("tableView:heightForRowAtIndexPath:"), heightForRow);
  rt::addMethod(cls, rt::sel("tableView:titleForHeaderInSection:"), headerForSection);
  rt::addMethod(cls, rt::sel("tableView:titleForFooterInSection:"), footerForSection);
  rt::addMethod(cls, rt::sel("tableView:cellForRowAtIndexPath:"), cellForRow);
  rt::addMethod(cls, rt::sel("tableView:didSelectRowAtIndexPath:"), didSelectRow);
  rt::addMethod(cls, rt::sel("tableView:canEditRowAtIndexPath:"), canEditRow);
  rt::addMethod(cls, rt::sel("tableView:trailingSwipeActionsConfigurationForRowAtIndexPath:"),
                trailingSwipe);
  rt::addMethod(cls, rt::sel("tableView:commitEditingStyle:forRowAtIndexPath:"), commitEditing);
  for (const PanelRow& row : panelRows())
    if (row.kind == RowKind::Switch) rt::addMethod(cls, rt::sel(row.action), onSwitch);
  rt::addMethod(cls, rt::sel("closeAndLock"), closeAndLockImp);
  rt::addMethod(cls, rt::sel("reload"), reloadImp);
  rt::addMethod(cls, rt::sel("showTip:"), showTipImp);
  rt::addMethod(cls, rt::sel("pickFromSessions"), pickFromSessionsImp);
}

Id QBPanelController::topVC() { return triggers::QBAuth::topVC(); }

void QBPanelController::presentFrom(Id target) {
  if (!target) target = topVC();
  if (!target) return;
  QBConfig& c = QBConfig::shared();
  c.setSuppressAutoLock(true);
  c.setSuppressSessionApply(true);
  unsigned long flow = beginPanelFlow();
  // The screen it was opened from may be gone by the time the check passes.
  triggers::QBAuth::authenticateForPanel([weakTarget = rt::Weak(target), flow](bool passed) {
    if (!panelFlowCurrent(flow)) {
      // The app left meanwhile and closed this flow: a check that passed
      // after that must not leave the secrets shown.
      if (passed) hideAfterEndedFlow();
      return;
    }
    if (!passed) {
      clearSuppressFlags();
      endPanelFlow();
      return;
    }
    sys::after(kAuthDelay_s, [weakTarget, flow] {
      if (!panelFlowCurrent(flow)) return;
      bool presented = host::guarded(
          "[QB] present ex: %@",
          [&] {
            Id top = host::QBRuntime::topPresented();
            rt::Strong opener = weakTarget.lock();
            if (!top) top = opener.get();
            QBConfig& cfg = QBConfig::shared();
            if (!cfg.unlocked()) {
              // The secrets stay visible for as long as the panel is open.
              cfg.setUnlocked(true);
              hiding::QBSessionHooks::refreshFilterCache();
            }
            presentPanelOn(top);
            return true;
          },
          false);
      if (!presented) {
        clearSuppressFlags();
        endPanelFlow();
      }
    });
  });
}

void QBPanelController::presentPanelOn(Id target) {
  if (!target) return;
  // Opened without the five taps' check, it is still closed by leaving the app.
  unsigned long flow = currentPanelFlow();
  if (!flow) flow = beginPanelFlow();
  bool ok = host::guarded(
      "[QB] presentPanel ex: %@",
      [&] {
        if (rt::send<Id>(target, "presentedViewController")) {
          // Busy presenting (an alert closing, another sheet): try again on whatever is on top
          // then.
          sys::after(kBusyRetry_s, [weakTarget = rt::Weak(target), flow] {
            if (!panelFlowCurrent(flow)) return;
            Id top = topVC();
            rt::Strong opener = weakTarget.lock();
            presentPanelOn(host::QBRuntime::lastPresented(top ? top : opener.get()));
          });
          return true;
        }
        // Made here, owned by the navigation controller and that by its presenter:
        // dismissing the sheet frees both.
        rt::Strong panel =
            rt::Strong::adopt(rt::send<Id>(rt::send<Id>(rt::getClass("QBPanelController"), "alloc"),
                                           "initWithStyle:", long(ui::TableStyle::InsetGrouped)));
        rt::Strong nav = rt::Strong::adopt(
            rt::send<Id>(rt::send<Id>(rt::getClass("UINavigationController"), "alloc"),
                         "initWithRootViewController:", panel.get()));
        ui::presentPageSheet(target, nav.get(), ui::SheetSpec{}, true);
        panelShown(nav.get());
        // Dragging the sheet away closes the panel as 完成 does.
        ui::onDraggedAway(nav.get(), [flow] { lockAfterPanel(flow); });
        return true;
      },
      false);
  if (!ok) {
    clearSuppressFlags();
    endPanelFlow();
  }
}

void QBPanelController::closeAndLock(Id self) {
  QBConfig::shared().setSuppressSessionApply(true);
  unsigned long flow = currentPanelFlow();
  ui::dismiss(self, true, [flow] { lockAfterPanel(flow); });
}

void QBPanelController::reload(Id self) { rt::send<void>(tableOf(self), "reloadData"); }

void QBPanelController::showTip(Id self, const std::string& message) {
  if (message.empty()) return;
  Id alert = ui::makeAlert("", message);
  ui::addAction(alert, "好", ui::ActionStyle::Default, nullptr);
  ui::present(self, alert, true);
}

void QBPanelController::pickFromSessions(Id self) {
  std::vector<PickItem> items = host::guarded(
      "[QB] QBPanelController pickFromSessions ex: %@",
      [] { return host::QBContactInfo::listNormalContactItems(); }, std::vector<PickItem>{});
  if (items.empty()) {
    using Items = std::optional<std::vector<PickItem>>;
    Items fromSessions = host::guarded(
        "[QB] QBPanelController listSessionItems ex: %@", [] { return Items(sessionItems()); },
        Items());
    if (!fromSessions) return;  // the session list failed too: nothing to offer, nothing said
    items = std::move(*fromSessions);
  }
  if (items.empty()) {
    showTip(self, "未读到通讯录联系人");
    return;
  }
  rt::Strong picker = QBContactPickController::make(
      std::move(items), [panel = rt::Weak(self)](const std::string& username) {
        QBConfig::shared().addSecretUser(username);
        secretListChanged();
        if (rt::Strong p = panel.lock()) reload(p.get());
      });
  rt::send<void>(rt::send<Id>(self, "navigationController"),
                 "pushViewController:animated:", picker.get(), true);
}

void QBPanelController::secretListChanged() {
  notify::QBNotifyHooks::syncVoipAutoIgnore();
  hiding::QBSessionHooks::refreshFilterCache();
  triggers::QBSchedule::applyNow();  // held back while the panel is up; its close applies
}

Id QBPanelController::iconImage(const std::string& symbol, ui::Color tint, ui::Color bg) {
  Id image = ui::symbolImage(symbol, 14, ui::Weight::Semibold, tint);
  std::vector<ui::DrawOp> ops{ui::FillRect{{{0, 0}, {30, 30}}, bg, 8}};
  if (image) {
    rt::CGSize s = ui::imageSize(image);
    ops.push_back(ui::DrawImage{image, {{(30 - s.width) / 2, (30 - s.height) / 2}, s}, 0});
  }
  return ui::renderImage({30, 30}, 0, false, ops);
}

}  // namespace panel
