#include "triggers/entry_hooks.hpp"

#include <algorithm>
#include <cmath>
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

// The page a navigation bar's recognizer counts for. The bar outlives each
// About page on it, so every new page takes the recognizer over.
struct BarTarget {
  rt::Weak bar;
  std::shared_ptr<rt::Weak> page;
};

struct EntryState {
  bool installed = false;
  std::vector<BarTarget> barTargets;
  long tapCount = 0;
  double lastTapAt = 0;
  host::Hook<void()> viewDidLoad;
  host::Hook<void(bool)> viewDidAppear;
};

EntryState& state() { return sys::state<EntryState>(); }

// The associated-object keys that keep each recognizer from being attached twice.
const char kNavMarker = 0;
const char kPageMarker = 0;
const char kLabelMarker = 0;

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
        // The host builds the page's labels late; the markers make repeats harmless.
        QBEntryHooks::attachAboutEntryGestures(self);
        attachLater(self, kEntryAppearAttachDelay);
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
    sys::log("[QB] entry = 关于微信 连点版本号 x5");
  });
}

bool QBEntryHooks::isVersionText(const std::string& text, const std::string& versionHint) {
  if (!versionHint.empty() && text.find(versionHint) != std::string::npos) return true;
  if (text.find("版本") != std::string::npos) return true;
  if (rt::lowercase(text).find("version") != std::string::npos) return true;
  return holdsVersionNumber(text);
}

// The recognizers hold the page weakly, as a recognizer holds its target: the
// bar's stays on the navigation bar after the page is gone, and counts for the
// page shown on it last.
void QBEntryHooks::attachAboutEntryGestures(Id page) {
  Id nav = rt::send<Id>(page, "navigationController");
  Id bar = nav ? rt::send<Id>(nav, "navigationBar") : nullptr;
  if (bar) {
    std::vector<BarTarget>& targets = state().barTargets;
    std::erase_if(targets, [](const BarTarget& t) { return !t.bar.lock(); });
    auto it = std::find_if(targets.begin(), targets.end(),
                           [&](const BarTarget& t) { return t.bar.lock().get() == bar; });
    if (it != targets.end()) *it->page = rt::Weak(page);
    if (!rt::getAssociatedObject(bar, &kNavMarker)) {
      auto target = std::make_shared<rt::Weak>(page);
      Id g = ui::addTap(bar, false, [target, bar](Id r) {
        if (rt::Strong p = target->lock()) onNavTap(p.get(), r, bar);
      });
      rt::setAssociatedObject(bar, &kNavMarker, g);
      targets.push_back({rt::Weak(bar), target});
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
