// UIViewController and its containers, UINavigationController and
// UITabBarController: the tree the system walks to find screens.
#include <algorithm>
#include <utility>

#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

ControllerState& c(Id self) { return *controllerState(self); }

Id view(Id self, SEL) {
  ControllerState& s = c(self);
  if (!s.viewLoaded) {
    s.viewLoaded = true;
    s.view = rt::send<Id>(rt::send<Id>(rt::getClass("UIView"), "alloc"), "init");
    rt::send<void>(self, "viewDidLoad");
  }
  return s.view;
}
bool isViewLoaded(Id self, SEL) { return c(self).viewLoaded; }
void lifecycle(Id, SEL) {}
void appearance(Id, SEL, bool) {}
Id childViewControllers(Id self, SEL) { return rt::array(c(self).children); }
// A container owns its children (a navigation controller its stack).
void addChildViewController(Id self, SEL, Id child) {
  if (!child || child == self) return;
  if (Id old = c(child).parent)
    std::erase(c(old).children, child);  // moves, with the one retain it has
  else
    rt::detail::retain(child);
  c(child).parent = self;
  c(self).children.push_back(child);
}
void removeFromParentViewController(Id self, SEL) {
  Id p = c(self).parent;
  if (!p) return;
  std::erase(c(p).children, self);
  c(self).parent = nullptr;
  rt::detail::release(self);
}
// A controller owns its view, its navigation bar, its children and what it
// presents; an alert its text fields.
void controllerDealloc(Id self, SEL cmd) {
  ControllerState& s = c(self);
  std::vector<Id> children;
  children.swap(s.children);
  s.viewControllers.clear();
  for (Id child : children) {
    c(child).parent = nullptr;
    rt::detail::release(child);
  }
  if (Id p = std::exchange(s.presented, nullptr)) {
    c(p).presenting = nullptr;
    rt::detail::release(p);
  }
  rt::detail::release(std::exchange(s.view, nullptr));
  rt::detail::release(std::exchange(s.navigationBar, nullptr));
  if (s.alert)
    for (Id field : std::exchange(s.alert->textFields, {})) rt::detail::release(field);
  superDealloc(self, cmd, "UIViewController");
}
Id parentViewController(Id self, SEL) { return c(self).parent; }
Id presentedViewController(Id self, SEL) { return c(self).presented; }
Id presentingViewController(Id self, SEL) { return c(self).presenting; }
Id navigationController(Id self, SEL) {
  for (Id p = c(self).parent; p; p = c(p).parent)
    if (rt::isKindOf(p, "UINavigationController")) return p;
  return nullptr;
}
Id title(Id self, SEL) { return rt::str(c(self).title); }
void setTitle(Id self, SEL, Id t) { c(self).title = rt::asString(t).value_or(""); }

void setStack(Id self, const std::vector<Id>& list) {
  for (Id old : c(self).children) {
    c(old).parent = nullptr;
    sim::autorelease(old);  // the new stack may hold it again
  }
  c(self).children.clear();
  c(self).viewControllers.clear();
  for (Id vc : list) {
    addChildViewController(self, nullptr, vc);
    c(self).viewControllers.push_back(vc);
  }
}

Id initWithRootViewController(Id self, SEL, Id root) {
  if (root) setStack(self, {root});
  return self;
}
Id viewControllers(Id self, SEL) { return rt::array(c(self).viewControllers); }
void setViewControllers(Id self, SEL, Id list) { setStack(self, rt::elements(list)); }
Id topViewController(Id self, SEL) {
  return c(self).viewControllers.empty() ? nullptr : c(self).viewControllers.back();
}
Id visibleViewController(Id self, SEL) {
  if (Id p = c(self).presented) return p;
  return topViewController(self, nullptr);
}
// On screen, the pushed controller loads its view and appears as the one it
// covers disappears, in UIKit's order.
void pushViewController(Id self, SEL, Id vc, bool) {
  if (!vc) return;
  Id covered = topViewController(self, nullptr);
  addChildViewController(self, nullptr, vc);
  c(self).viewControllers.push_back(vc);
  if (!inWindowHierarchy(self)) return;
  rt::send<Id>(vc, "view");
  if (covered) rt::send<void>(covered, "viewWillDisappear:", true);
  rt::send<void>(vc, "viewWillAppear:", true);
  if (covered) rt::send<void>(covered, "viewDidDisappear:", true);
  rt::send<void>(vc, "viewDidAppear:", true);
}
Id popViewController(Id self, SEL, bool) {
  auto& stack = c(self).viewControllers;
  if (stack.size() <= 1) return nullptr;
  Id top = stack.back();
  stack.pop_back();
  // Handed back to the caller for this turn, as UIKit's autoreleased return.
  sim::autorelease(rt::detail::retain(top));
  removeFromParentViewController(top, nullptr);
  return top;
}
Id navigationBar(Id self, SEL) {
  Id& bar = c(self).navigationBar;
  if (!bar) {
    bar = rt::send<Id>(rt::send<Id>(rt::getClass("UINavigationBar"), "alloc"), "init");
    viewState(bar)->frame = rt::CGRect{{0, 47}, {390, 44}};
  }
  return bar;
}

Id selectedViewController(Id self, SEL) {
  auto& list = c(self).viewControllers;
  long i = c(self).selectedIndex;
  return i >= 0 && i < long(list.size()) ? list[std::size_t(i)] : nullptr;
}
unsigned long selectedIndex(Id self, SEL) { return (unsigned long)c(self).selectedIndex; }
void setSelectedIndex(Id self, SEL, unsigned long i) { c(self).selectedIndex = long(i); }

}  // namespace

void registerControllers(Runtime&) {
  ClassBuilder("UIResponder").build();
  ClassBuilder("UIViewController", "UIResponder")
      .method("dealloc", controllerDealloc)
      .method("view", view)
      .method("isViewLoaded", isViewLoaded)
      .method("viewDidLoad", lifecycle)
      .method("viewWillAppear:", appearance)
      .method("viewDidAppear:", appearance)
      .method("viewWillDisappear:", appearance)
      .method("viewDidDisappear:", appearance)
      .method("childViewControllers", childViewControllers)
      .method("addChildViewController:", addChildViewController)
      .method("removeFromParentViewController", removeFromParentViewController)
      .method("parentViewController", parentViewController)
      .method("presentedViewController", presentedViewController)
      .method("presentingViewController", presentingViewController)
      .method("navigationController", navigationController)
      .method("title", title)
      .method("setTitle:", setTitle)
      .build();
  ClassBuilder("UINavigationController", "UIViewController")
      .method("initWithRootViewController:", initWithRootViewController)
      .method("viewControllers", viewControllers)
      .method("setViewControllers:", setViewControllers)
      .method("topViewController", topViewController)
      .method("visibleViewController", visibleViewController)
      .method("pushViewController:animated:", pushViewController)
      .method("popViewControllerAnimated:", popViewController)
      .method("navigationBar", navigationBar)
      .build();
  ClassBuilder("UITabBarController", "UIViewController")
      .method("viewControllers", viewControllers)
      .method("setViewControllers:", setViewControllers)
      .method("selectedViewController", selectedViewController)
      .method("selectedIndex", selectedIndex)
      .method("setSelectedIndex:", setSelectedIndex)
      .build();
}

}  // namespace sim
