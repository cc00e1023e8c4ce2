#include "panel/contact_pick_controller.hpp"

#include <map>

#include "base/utf8.hpp"
#include "core/config.hpp"
#include "host/hook.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/process_state.hpp"
#include "ui/navigation.hpp"
#include "ui/pickers.hpp"
#include "ui/tables.hpp"

namespace panel {
namespace {

using rt::Id;
using rt::SEL;

struct Picker {
  std::vector<PickItem> allItems;
  std::vector<PickItem> filteredItems;
  std::function<void(const std::string&)> onPick;
  Id searchController = nullptr;
};

// The pickers' properties, by picker, each erased when its picker is deallocated.
struct PickState {
  std::map<Id, Picker> pickers;
};

Picker& picker(Id self) { return sys::state<PickState>().pickers[self]; }

void viewDidLoad(Id self, SEL cmd) {
  rt::Method super = rt::getInstanceMethod(rt::getClass("UITableViewController"), cmd);
  if (super) rt::call<void>(rt::methodImplementation(super), self, cmd);
  rt::send<void>(self, "setTitle:", rt::str("添加密友"));
  ui::setViewBackground(self, ui::kGroupedBackground);
  ui::setLeftBarButton(self, "返回", ui::BarButtonStyle::Plain, [self] {
    rt::send<Id>(rt::send<Id>(self, "navigationController"), "popViewControllerAnimated:", true);
  });
  ui::SearchSpec spec;
  spec.placeholder = "搜索备注 / 昵称 / 微信号";
  picker(self).searchController = ui::installSearch(self, spec, [self](const std::string& text) {
    QBContactPickController::updateSearch(self, text);
  });
}

long numberOfRows(Id self, SEL, Id, long) { return long(picker(self).filteredItems.size()); }
double heightForRow(Id, SEL, Id, Id) { return kPickRowHeight; }
Id headerForSection(Id self, SEL, Id, long) {
  return rt::str(QBContactPickController::headerFor(picker(self).filteredItems.size()));
}

Id pickerCell(Id self, Id table, Id ip) {
  const std::vector<PickItem>& items = picker(self).filteredItems;
  long row = rt::indexPathRow(ip);
  PickItem item = row >= 0 && row < long(items.size()) ? items[std::size_t(row)] : PickItem{};
  host::QBContactInfo info = host::QBContactInfo::infoForUsername(item.username);
  ui::CellSpec c;
  c.style = ui::CellStyle::Subtitle;
  c.imageCornerRadius = 12;
  c.titleFont = {16, ui::Weight::Medium};
  c.detailFont = {12, ui::Weight::Regular};
  c.detailColor = ui::kSecondaryLabel;
  c.title = !info.displayName.empty()   ? info.displayName
            : !item.displayName.empty() ? item.displayName
                                        : item.username;
  if (core::QBConfig::shared().isSecretUser(item.username)) {
    c.detail = "已在密友名单";
    c.accessory = ui::Accessory::Checkmark;
  } else {
    c.detail = QBContactPickController::detailFor(c.title, info.nickname, item.username);
  }
  if (info.avatar)
    c.image =
        ui::renderImage({44, 44}, 0, true, {ui::DrawImage{info.avatar, {{0, 0}, {44, 44}}, 0}});
  Id cell = ui::dequeueCell(table, "c");
  if (!cell) return ui::makeCell(c, "c");
  ui::configureCell(cell, c);
  return cell;
}

void dealloc(Id self, SEL cmd) {
  sys::state<PickState>().pickers.erase(self);
  rt::Method super = rt::getInstanceMethod(rt::getClass("UITableViewController"), cmd);
  if (super) rt::call<void>(rt::methodImplementation(super), self, cmd);
}

// UIKit's calls that build cells or act are guarded, as the panel's are.
Id cellForRow(Id self, SEL, Id table, Id ip) {
  Id cell = host::guarded(
      "[QB] QBContactPickController tableView:cellForRowAtIndexPath: ex: %@",
      [&] { return pickerCell(self, table, ip); }, Id{});
  return cell ? cell : ui::makeCell(ui::CellSpec{});  // UIKit raises on a nil cell
}

void pick(Id self, Id table, Id ip) {
  rt::send<void>(table, "deselectRowAtIndexPath:animated:", ip, true);
  Picker& p = picker(self);
  long row = rt::indexPathRow(ip);
  std::string username = row >= 0 && row < long(p.filteredItems.size())
                             ? p.filteredItems[std::size_t(row)].username
                             : "";
  // Stays open on purpose: several secrets can be added in a row.
  if (p.onPick && !username.empty()) {
    auto onPick = p.onPick;
    onPick(username);
  }
  rt::send<void>(table, "reloadData");
}

void didSelectRow(Id self, SEL, Id table, Id ip) {
  host::guarded("[QB] QBContactPickController tableView:didSelectRowAtIndexPath: ex: %@",
                [&] { pick(self, table, ip); });
}

}  // namespace

void QBContactPickController::registerRuntimeClass() {
  if (rt::getClass("QBContactPickController")) return;
  rt::Class cls =
      rt::allocateClassPair(rt::getClass("UITableViewController"), "QBContactPickController");
  if (!cls) return;
  rt::registerClassPair(cls);
  rt::addMethod(cls, rt::sel("viewDidLoad"), viewDidLoad);
  rt::addMethod(cls, rt::sel("dealloc"), dealloc);
  rt::addMethod(cls, rt::sel("tableView:numberOfRowsInSection:"), numberOfRows);
  rt::addMethod(cls, rt::sel("tableView:heightForRowAtIndexPath:"), heightForRow);
  rt::addMethod(cls, rt::sel("tableView:titleForHeaderInSection:"), headerForSection);
  rt::addMethod(cls, rt::sel("tableView:cellForRowAtIndexPath:"), cellForRow);
  rt::addMethod(cls, rt::sel("tableView:didSelectRowAtIndexPath:"), didSelectRow);
}

rt::Strong QBContactPickController::make(std::vector<PickItem> items,
                                         std::function<void(const std::string&)> onPick) {
  rt::Strong self =
      rt::Strong::adopt(rt::send<Id>(rt::send<Id>(rt::getClass("QBContactPickController"), "alloc"),
                                     "initWithStyle:", long(ui::TableStyle::InsetGrouped)));
  Picker& p = picker(self.get());
  p.filteredItems = items;
  p.allItems = std::move(items);
  p.onPick = std::move(onPick);
  return self;
}

std::vector<PickItem> QBContactPickController::filter(const std::vector<PickItem>& items,
                                                      const std::string& query) {
  std::string q = base::trimWhitespaceAndNewlines(query);
  if (q.empty()) return items;
  q = rt::lowercase(q);
  std::vector<PickItem> out;
  for (const PickItem& item : items) {
    for (const std::string* field :
         {&item.displayName, &item.nickname, &item.remark, &item.username}) {
      if (rt::lowercase(*field).find(q) != std::string::npos) {
        out.push_back(item);
        break;
      }
    }
  }
  return out;
}

void QBContactPickController::updateSearch(Id self, const std::string& text) {
  Picker& p = picker(self);
  p.filteredItems = filter(p.allItems, text);
  rt::send<void>(rt::send<Id>(self, "tableView"), "reloadData");
}

const std::vector<PickItem>& QBContactPickController::filteredItems(Id self) {
  return picker(self).filteredItems;
}

std::size_t QBContactPickController::keptStates() { return sys::state<PickState>().pickers.size(); }

std::string QBContactPickController::headerFor(std::size_t shown) {
  return shown == 0 ? "未找到联系人" : "通讯录 · " + std::to_string(shown) + " 人";
}

std::string QBContactPickController::detailFor(const std::string& title,
                                               const std::string& nickname,
                                               const std::string& username) {
  if (nickname.empty() || nickname == title) return username;
  return nickname + " · " + username;
}

}  // namespace panel
