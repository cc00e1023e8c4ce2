// UIView and the views built on it: UILabel, UINavigationBar, UIWindow and
// UITableView (whose rows are tables.cpp's).
#include <algorithm>

#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

ViewState& v(Id self) { return *viewState(self); }

Id subviews(Id self, SEL) { return rt::array(v(self).subviews); }
Id superview(Id self, SEL) { return v(self).superview; }
// A view owns its subviews and its recognizers.
void addSubview(Id self, SEL, Id child) {
  if (!child || child == self) return;
  if (Id old = v(child).superview)
    std::erase(v(old).subviews, child);  // moves, with the one retain it has
  else
    rt::detail::retain(child);
  v(child).superview = self;
  v(self).subviews.push_back(child);
}
void removeFromSuperview(Id self, SEL) {
  Id parent = v(self).superview;
  if (!parent) return;
  std::erase(v(parent).subviews, self);
  v(self).superview = nullptr;
  rt::detail::release(self);
}
void viewDealloc(Id self, SEL cmd) {
  ViewState& s = v(self);
  std::vector<Id> subviews, recognizers;
  subviews.swap(s.subviews);
  recognizers.swap(s.gestureRecognizers);
  for (Id sub : subviews) {
    v(sub).superview = nullptr;
    rt::detail::release(sub);
  }
  for (Id g : recognizers) rt::detail::release(g);
  superDealloc(self, cmd, "UIView");
}
bool isHidden(Id self, SEL) { return v(self).hidden; }
void setHidden(Id self, SEL, bool h) { v(self).hidden = h; }
double alpha(Id self, SEL) { return v(self).alpha; }
void setAlpha(Id self, SEL, double a) { v(self).alpha = a; }
bool isUserInteractionEnabled(Id self, SEL) { return v(self).userInteraction; }
void setUserInteractionEnabled(Id self, SEL, bool on) { v(self).userInteraction = on; }
Id gestureRecognizers(Id self, SEL) {
  return v(self).gestureRecognizers.empty() ? nullptr : rt::array(v(self).gestureRecognizers);
}
void addGestureRecognizer(Id self, SEL, Id g) {
  if (g && std::find(v(self).gestureRecognizers.begin(), v(self).gestureRecognizers.end(), g) ==
               v(self).gestureRecognizers.end())
    v(self).gestureRecognizers.push_back(rt::detail::retain(g));
}
void removeGestureRecognizer(Id self, SEL, Id g) {
  if (std::erase(v(self).gestureRecognizers, g)) rt::detail::release(g);
}
rt::CGRect frame(Id self, SEL) { return v(self).frame; }
void setFrame(Id self, SEL, rt::CGRect f) { v(self).frame = f; }
rt::CGRect bounds(Id self, SEL) { return rt::CGRect{{0, 0}, v(self).frame.size}; }
long tag(Id self, SEL) { return v(self).tag; }
void setTag(Id self, SEL, long t) { v(self).tag = t; }
Id window(Id self, SEL) {
  Id w = self;
  while (v(w).superview) w = v(w).superview;
  return rt::isKindOf(w, "UIWindow") ? w : nullptr;
}

Id text(Id self, SEL) { return rt::str(v(self).text); }
void setText(Id self, SEL, Id t) { v(self).text = rt::asString(t).value_or(""); }

Id rootViewController(Id self, SEL) { return v(self).rootViewController; }
void setRootViewController(Id self, SEL, Id root) {
  v(self).rootViewController = root;
  if (root) addSubview(self, nullptr, rt::send<Id>(root, "view"));
}
bool isKeyWindow(Id self, SEL) { return v(self).keyWindow; }
void makeKeyAndVisible(Id self, SEL) {
  for (Id w : rt::elements(rt::send<Id>(sharedApplication(), "windows"))) v(w).keyWindow = false;
  v(self).keyWindow = true;
  v(self).hidden = false;
}

Id dataSource(Id self, SEL) { return v(self).dataSource; }
void setDataSource(Id self, SEL, Id ds) { v(self).dataSource = ds; }
Id tableDelegate(Id self, SEL) { return v(self).delegate; }
void setTableDelegate(Id self, SEL, Id d) { v(self).delegate = d; }
bool isDragging(Id self, SEL) { return v(self).dragging; }
bool isDecelerating(Id self, SEL) { return v(self).decelerating; }

}  // namespace

void registerViews(Runtime&) {
  ClassBuilder("UIView")
      .method("dealloc", viewDealloc)
      .method("subviews", subviews)
      .method("superview", superview)
      .method("addSubview:", addSubview)
      .method("removeFromSuperview", removeFromSuperview)
      .method("isHidden", isHidden)
      .method("setHidden:", setHidden)
      .method("alpha", alpha)
      .method("setAlpha:", setAlpha)
      .method("isUserInteractionEnabled", isUserInteractionEnabled)
      .method("setUserInteractionEnabled:", setUserInteractionEnabled)
      .method("gestureRecognizers", gestureRecognizers)
      .method("addGestureRecognizer:", addGestureRecognizer)
      .method("removeGestureRecognizer:", removeGestureRecognizer)
      .method("frame", frame)
      .method("setFrame:", setFrame)
      .method("bounds", bounds)
      .method("tag", tag)
      .method("setTag:", setTag)
      .method("window", window)
      .build();
  ClassBuilder("UILabel", "UIView").method("text", text).method("setText:", setText).build();
  ClassBuilder("UINavigationBar", "UIView").build();
  ClassBuilder("UIWindow", "UIView")
      .method("rootViewController", rootViewController)
      .method("setRootViewController:", setRootViewController)
      .method("isKeyWindow", isKeyWindow)
      .method("makeKeyAndVisible", makeKeyAndVisible)
      .build();
  ClassBuilder("UIScrollView", "UIView")
      .method("isDragging", isDragging)
      .method("isDecelerating", isDecelerating)
      .build();
  ClassBuilder("UITableView", "UIScrollView")
      .method("dataSource", dataSource)
      .method("setDataSource:", setDataSource)
      .method("delegate", tableDelegate)
      .method("setDelegate:", setTableDelegate)
      .build();
}

}  // namespace sim
