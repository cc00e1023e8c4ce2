// A tap as UIKit delivers it. The deepest visible view that takes touches
// there is hit, and every recognizer on it and on its superviews gets the
// touch, the deepest view's first and each view's in the order added. A tap
// recognizer recognizes; the first that does keeps the others from
// recognizing (the system's recognizers allow no simultaneous recognition), and
// a long press fails, the touch being too short. A control that was hit sends
// its touch-up actions after that, unless the recognizer that recognized
// cancels touches in its view. Since iOS 6 a control's own tap wins over a
// tap recognizer on a view above it. A screen in a navigation controller lies
// under its navigation bar, which takes the taps in its band. Not modelled:
// the touch's phases over time (a tap is one instant), recognizers' delegates
// and failure requirements, and the rest of the window (a tap given in one
// view tree is not taken by a sheet or alert drawn over it).
#include <utility>
#include <vector>

#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

constexpr unsigned long kTouchUpInside = 1ul << 6;

struct ControlState {
  // UIKit does not retain a control's targets.
  std::vector<std::pair<Id, SEL>> touchUpInside;
};

void addTarget(Id self, SEL, Id target, SEL action, unsigned long events) {
  if (events & kTouchUpInside) extra<ControlState>(self).touchUpInside.push_back({target, action});
}

// The deepest visible view under `point` (in `view`'s coordinates) that takes touches.
Id hitTest(Id view, rt::CGPoint point) {
  ViewState& v = *viewState(view);
  if (v.hidden || v.alpha < 0.01 || !v.userInteraction) return nullptr;
  if (point.x < 0 || point.y < 0 || point.x > v.frame.size.width || point.y > v.frame.size.height)
    return nullptr;
  for (auto it = v.subviews.rbegin(); it != v.subviews.rend(); ++it) {
    rt::CGRect f = viewState(*it)->frame;
    if (Id hit = hitTest(*it, {point.x - f.origin.x, point.y - f.origin.y})) return hit;
  }
  return view;
}

bool isTap(Id recognizer) { return rt::isKindOf(recognizer, "UITapGestureRecognizer"); }

}  // namespace

void registerTouches() {
  ClassBuilder("UIControl", "UIView")
      .method("addTarget:action:forControlEvents:", addTarget)
      .build();
}

bool tapAt(rt::Id root, rt::CGPoint point) {
  Id hit = hitTest(root, point);
  if (!hit) return false;
  ControlState* control = rt::isKindOf(hit, "UIControl") ? findExtra<ControlState>(hit) : nullptr;
  bool controlTaps = control && !control->touchUpInside.empty();

  struct Touched {
    Id recognizer;
    bool onHitView;
  };
  std::vector<Touched> chain;
  for (Id v = hit; v; v = viewState(v)->superview)
    for (Id g : viewState(v)->gestureRecognizers) chain.push_back({g, v == hit});
  for (const Touched& t : chain) extra<TapState>(t.recognizer) = {root, point};

  Id winner = nullptr;
  for (const Touched& t : chain) {
    if (!isTap(t.recognizer) || (controlTaps && !t.onHitView)) continue;
    winner = t.recognizer;
    break;
  }
  for (const Touched& t : chain)
    if (t.recognizer != winner) gestureState(t.recognizer)->state = 5;  // failed
  if (winner) {
    GestureState& gs = *gestureState(winner);
    gs.state = 3;  // ended: a tap is recognized at once
    if (auto action = gs.action) action(winner);
  }
  for (const Touched& t : chain) gestureState(t.recognizer)->state = 0;

  bool cancelled = winner && gestureState(winner)->cancelsTouchesInView;
  if (controlTaps && !cancelled) {
    for (auto [target, action] : std::vector(control->touchUpInside))
      if (target) rt::send<void>(target, action, hit);
    return true;
  }
  return winner != nullptr;
}

bool tapOnScreen(rt::Id controller, rt::CGPoint point) {
  Id nav = rt::send<Id>(controller, "navigationController");
  Id bar = nav ? rt::send<Id>(nav, "navigationBar") : nullptr;
  if (bar) {
    const ViewState& b = *viewState(bar);
    rt::CGPoint in{point.x - b.frame.origin.x, point.y - b.frame.origin.y};
    if (!b.hidden && in.x >= 0 && in.y >= 0 && in.x <= b.frame.size.width &&
        in.y <= b.frame.size.height)
      return tapAt(bar, in);
  }
  return tapAt(rt::send<Id>(controller, "view"), point);
}

}  // namespace sim
