#include "triggers/entry_hooks.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "host/hook.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/bundle.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/process_state.hpp"
#include "sys/queue.hpp"
#include "ui/feedback.hpp"
#include "ui/gestures.hpp"

namespace triggers {
namespace {

using rt::Id;
using rt::SEL;

// The navigation bar's recognizer and the bar it is on. The bar is shared by
// every screen of its stack, so the recognizer goes when its About page
// disappears or is freed: a keeper object associated with the page removes it
// (from viewWillDisappear:, or from its dealloc when the page goes first).
struct BarHold {
  rt::Weak bar;
  rt::Weak recognizer;
};

struct EntryState {
  bool installed = false;
  std::map<Id, BarHold> barHolds;  // by keeper
  long tapCount = 0;
  double lastTapAt = 0;
  host::Hook<void()> viewDidLoad;
  host::Hook<void(bool)> viewDidAppear;
  host::Hook<void(bool)> viewWillDisappear;
};

EntryState& state() { return sys::state<EntryState>(); }

// The associated-object keys that keep each recognizer from being attached twice.
const char kNavMarker = 0;
const char kPageMarker = 0;
const char kLabelMarker = 0;
// On the page: its bar recognizer's keeper, and whether it is on screen.
const char kBarKeeper = 0;
const char kShown = 0;

// Takes the recognizer off its bar, unless the bar has another of ours by now.
void takeOffBar(const BarHold& hold) {
  rt::Strong bar = hold.bar.lock();
  rt::Strong g = hold.recognizer.lock();
  if (!bar || !g) return;
  if (rt::getAssociatedObject(bar.get(), &kNavMarker) == g.get())
    rt::setAssociatedObject(bar.get(), &kNavMarker, nullptr);
  rt::send<void>(bar.get(), "removeGestureRecognizer:", g.get());
}

void releaseKept(Id keeper) {
  auto& holds = state().barHolds;
  auto it = holds.find(keeper);
  if (it == holds.end()) return;
  BarHold hold = std::move(it->second);
  holds.erase(it);
  takeOffBar(hold);
}

// A keeper freed with its page: the page went without disappearing.
void keeperDealloc(Id self, SEL cmd) {
  host::guarded("[QB] about detach ex: %@", [&] { releaseKept(self); });
  rt::Method super = rt::getInstanceMethod(rt::getClass("NSObject"), cmd);
  if (super) rt::call<void>(rt::methodImplementation(super), self, cmd);
}

rt::Class keeperClass() {
  if (rt::Class cls = rt::getClass("QBAboutBarKeeper")) return cls;
  rt::Class cls = rt::allocateClassPair(rt::getClass("NSObject"), "QBAboutBarKeeper");
  if (!cls) return nullptr;
  rt::registerClassPair(cls);
  rt::addMethod(cls, rt::sel("dealloc"), keeperDealloc);
  return cls;
}

// The page now answers for `g` on `bar`; whatever it kept before is released.
void keepOnPage(Id page, Id bar, Id g) {
  rt::Class cls = keeperClass();
  if (!cls) return;
  rt::Strong keeper = rt::Strong::adopt(rt::send<Id>(rt::send<Id>(cls, "alloc"), "init"));
  state().barHolds[keeper.get()] = BarHold{rt::Weak(bar), rt::Weak(g)};
  if (Id old = rt::getAssociatedObject(page, &kBarKeeper)) releaseKept(old);
  rt::setAssociatedObject(page, &kBarKeeper, keeper.get());
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// A version number such as 8.0.49: digits, a dot, digits, anywhere in the text.
bool holdsVersionNumber(std::string_view text) {
  for (std::size_t i = 0; i + 2 < text.size(); ++i)
    if (isDigit(text[i]) && text[i + 1] == '.' && isDigit(text[i + 2])) return true;
  return false;
}

// The page is held weakly by the delayed attaches: a user who backed out
// within the delay has freed it, and then there is nothing to do.
void attachLater(Id page, double delay) {
  sys::after(delay, [weak = rt::Weak(page)] {
    rt::Strong p = weak.lock();
    if (!p) return;
    // Nothing may escape a main-queue block into the host.
    host::guarded("[QB] about attach ex: %@",
                  [&] { QBEntryHooks::attachAboutEntryGestures(p.get()); });
  });
}

void aboutViewDidLoad(Id self, SEL cmd) {
  state().viewDidLoad.run(
      "[QB] about viewDidLoad ex: %@",
      [&](auto& original) {
        original();
        attachLater(self, kEntryLoadAttachDelay);
      },
      self, cmd);
}

void aboutViewDidAppear(Id self, SEL cmd, bool animated) {
  state().viewDidAppear.run(
      "[QB] about viewDidAppear ex: %@",
      [&](auto& original) {
        original(animated);
        rt::setAssociatedObject(self, &kShown, rt::boolNumber(true));
        // The host builds the page's labels late; the markers make repeats harmless.
        QBEntryHooks::attachAboutEntryGestures(self);
        attachLater(self, kEntryAppearAttachDelay);
      },
      self, cmd, animated);
}

void aboutViewWillDisappear(Id self, SEL cmd, bool animated) {
  state().viewWillDisappear.run(
      "[QB] about viewWillDisappear ex: %@",
      [&](auto& original) {
        original(animated);
        rt::setAssociatedObject(self, &kShown, nullptr);
        if (Id keeper = rt::getAssociatedObject(self, &kBarKeeper)) {
          releaseKept(keeper);
          rt::setAssociatedObject(self, &kBarKeeper, nullptr);
        }
      },
      self, cmd, animated);
}

bool ended(Id recognizer) { return ui::gestureState(recognizer) == ui::GestureState::Ended; }

void onNavTap(Id page, Id recognizer, Id bar) {
  if (!ended(recognizer)) return;
  rt::CGPoint at = ui::locationInView(recognizer, bar);
  rt::CGRect bounds = rt::send<rt::CGRect>(bar, "bounds");
  if (std::fabs(at.x - rt::midX(bounds)) <= kEntryNavHalfWidth) QBEntryHooks::onSecretTapFrom(page);
}

void onPageTap(Id page, Id recognizer) {
  if (!ended(recognizer)) return;
  if (ui::locationInView(recognizer, rt::send<Id>(page, "view")).y <= kEntryPageTopBand)
    QBEntryHooks::onSecretTapFrom(page);
}

void onVersionTap(Id page, Id recognizer) {
  if (ended(recognizer)) QBEntryHooks::onSecretTapFrom(page);
}

}  // namespace

void QBEntryHooks::install() {
  EntryState& s = state();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] entry install ex: %@", [&] {
    rt::Class about = rt::getClass("SettingAboutMMViewController");
    if (!about) {
      sys::log("[QB] SettingAboutMMViewController missing");
      return;
    }
    rt::Class owner = rt::getClass("UIViewController");
    s.viewDidAppear.swizzle(owner, about,
                            "viewDidAppear:", "qb_about_viewDidAppear:", aboutViewDidAppear);
    s.viewDidLoad.swizzle(owner, about, "viewDidLoad", "qb_about_viewDidLoad", aboutViewDidLoad);
    s.viewWillDisappear.swizzle(owner, about, "viewWillDisappear:",
                                "qb_about_viewWillDisappear:", aboutViewWillDisappear);
    sys::log("[QB] entry = 关于微信 连点版本号 x5");
  });
}

bool QBEntryHooks::isVersionText(const std::string& text, const std::string& versionHint) {
  if (!versionHint.empty() && text.find(versionHint) != std::string::npos) return true;
  if (text.find("版本") != std::string::npos) return true;
  if (rt::lowercase(text).find("version") != std::string::npos) return true;
  return holdsVersionNumber(text);
}

// The recognizers hold the page weakly, as a recognizer holds its target. The
// bar's is attached only while the page is on screen: a late attach after the
// page has gone would leave it counting on another screen of the stack.
void QBEntryHooks::attachAboutEntryGestures(Id page) {
  Id nav = rt::send<Id>(page, "navigationController");
  Id bar = nav ? rt::send<Id>(nav, "navigationBar") : nullptr;
  if (bar && rt::getAssociatedObject(page, &kShown)) {
    if (!rt::getAssociatedObject(bar, &kNavMarker)) {
      Id g = ui::addTap(bar, false, [weak = rt::Weak(page), bar](Id r) {
        if (rt::Strong p = weak.lock()) onNavTap(p.get(), r, bar);
      });
      rt::setAssociatedObject(bar, &kNavMarker, g);
      keepOnPage(page, bar, g);
    }
  }
  std::string hint = sys::mainBundleString("CFBundleShortVersionString");
  walkAttachVersionLabels(page, rt::send<Id>(page, "view"), hint, 0);
  if (!rt::getAssociatedObject(page, &kPageMarker)) {
    Id g = ui::addTap(rt::send<Id>(page, "view"), false, [weak = rt::Weak(page)](Id r) {
      if (rt::Strong p = weak.lock()) onPageTap(p.get(), r);
    });
    rt::setAssociatedObject(page, &kPageMarker, g);
  }
}

void QBEntryHooks::walkAttachVersionLabels(Id page, Id view, const std::string& versionHint,
                                           long depth) {
  if (!view || depth > kEntryWalkDepth) return;
  if (rt::isKindOf(view, "UILabel")) {
    std::string text = rt::asString(rt::send<Id>(view, "text")).value_or("");
    if (isVersionText(text, versionHint)) {
      rt::send<void>(view, "setUserInteractionEnabled:", true);
      if (!rt::getAssociatedObject(view, &kLabelMarker)) {
        // Unlike the other two, this one keeps UIKit's default cancelsTouchesInView (on purpose).
        Id g = ui::addTap(view, true, [weak = rt::Weak(page)](Id r) {
          if (rt::Strong p = weak.lock()) onVersionTap(p.get(), r);
        });
        rt::setAssociatedObject(view, &kLabelMarker, g);
      }
    }
  }
  for (Id sub : rt::elements(rt::send<Id>(view, "subviews")))
    walkAttachVersionLabels(page, sub, versionHint, depth + 1);
}

void QBEntryHooks::onSecretTapFrom(Id page) {
  EntryState& s = state();
  host::guarded("[QB] about tap ex: %@", [&] {
    double now = sys::mediaTime();
    if (now - s.lastTapAt > kEntryTapGap) {
      s.lastTapAt = now;
      s.tapCount = 1;
      return;
    }
    long previous = s.tapCount;
    s.lastTapAt = now;
    s.tapCount = previous + 1;
    if (previous < kEntryTapsNeeded - 1) return;
    s.tapCount = 0;
    ui::impact(ui::ImpactStyle::Light);
    // The panel lies above this layer: it is reached by its runtime class's name.
    rt::Class panel = rt::getClass("QBPanelController");
    if (panel) rt::send<void>(panel, "presentFrom:", page);
  });
}

long QBEntryHooks::tapCount() { return state().tapCount; }

}  // namespace triggers
