#include "sim/frameworks/uikit/leaks.hpp"

#include <algorithm>
#include <unordered_set>

#include "rt/runtime.hpp"
#include "sim/runtime/alloc_sites.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace sim {
namespace {

using rt::Id;

// What `obj` owns, as UIKit and Foundation keep it.
std::vector<Id> ownedBy(Id obj) {
  std::vector<Id> out;
  for (const rt::Object::Association& a : obj->associated)
    if (a.retained) out.push_back(a.value);
  for (const rt::IvarSlot& slot : obj->ivars) out.push_back(slot.object);
  auto append = [&](const std::vector<Id>& more) {
    out.insert(out.end(), more.begin(), more.end());
  };
  if (auto* a = native<ArrayData>(obj)) append(a->items);
  if (auto* s = native<SetData>(obj)) append(s->items);
  if (auto* d = native<DictionaryData>(obj))
    for (auto [k, v] : d->entries) out.insert(out.end(), {k, v});
  if (auto* image = native<ImageState>(obj))
    for (const ui::DrawOp& op : image->ops)
      if (const auto* d = std::get_if<ui::DrawImage>(&op)) out.push_back(d->image);
  if (rt::isKindOf(obj, "UIView")) {
    const ViewState& v = *viewState(obj);
    append(v.subviews);
    append(v.gestureRecognizers);
    out.push_back(v.rootViewController);
  }
  if (rt::isKindOf(obj, "UIViewController")) {
    const ControllerState& c = *controllerState(obj);
    out.insert(out.end(), {c.view, c.navigationBar, c.presented});
    append(c.children);
    append(c.viewControllers);
    if (const AlertState* alert = c.alert.get()) append(alert->textFields);
  }
  if (const TableState* t = findExtra<TableState>(obj)) {
    for (const ShownTableSection& section : t->shown) append(section.cells);
    for (const auto& [identifier, cells] : t->reusable) append(cells);
    out.push_back(t->headerView);
  }
  std::erase(out, nullptr);
  return out;
}

}  // namespace

std::vector<rt::Id> leakedObjects() {
  Runtime& rtm = runtime();
  std::vector<Id> live = rtm.liveObjects();
  std::vector<Id> pending = rtm.singletons();
  for (Id obj : live)
    if (makerOf(obj->madeAt) != Maker::System) pending.push_back(obj);
  std::unordered_set<Id> owned;
  while (!pending.empty()) {
    Id obj = pending.back();
    pending.pop_back();
    if (!obj || obj->freed || !owned.insert(obj).second) continue;
    for (Id sub : ownedBy(obj)) pending.push_back(sub);
  }
  std::vector<Id> leaks;
  for (Id obj : live)
    if (!owned.count(obj)) leaks.push_back(obj);
  std::stable_sort(leaks.begin(), leaks.end(), [](Id a, Id b) {
    return rt::className(rt::classOf(a)) < rt::className(rt::classOf(b));
  });
  return leaks;
}

std::vector<std::string> describeLeaks() {
  std::vector<std::string> lines;
  for (Id obj : leakedObjects())
    lines.push_back(std::string(rt::className(rt::classOf(obj))) + " #" +
                    std::to_string(obj->serial) + " retain=" + std::to_string(obj->retainCount) +
                    " made in " + madeIn(obj->madeAt));
  return lines;
}

}  // namespace sim
