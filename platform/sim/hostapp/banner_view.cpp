// The in-app banner's card: a rounded light-grey label holding two labels, added
// to the key window over every screen and removed when its time is up.
#include "sim/hostapp/banner_view.hpp"

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/colors.hpp"

namespace hostapp {
rt::Id hostLabel(const std::string& text, rt::CGRect frame, const ui::LabelStyle& look,
                 const char* style) {
  rt::Id l = rt::send<rt::Id>(rt::getClass("UILabel"), "new");
  rt::send<void>(l, "setText:", rt::str(text));
  rt::send<void>(l, "setFrame:", frame);
  sim::ViewState& v = *sim::viewState(l);
  v.look = look;
  v.style = style;
  return l;
}

namespace {

rt::Id label(const std::string& text, rt::CGRect frame, const ui::LabelStyle& look) {
  return hostLabel(text, frame, look, "host banner");
}

}  // namespace

void showBannerView(const std::string& from, const std::string& text, double seconds) {
  rt::Id window = nullptr;
  for (rt::Id w : rt::elements(rt::send<rt::Id>(sim::sharedApplication(), "windows")))
    if (sim::viewState(w)->keyWindow) window = w;
  if (!window) return;
  rt::Id card =
      label("", {{8, 52}, {374, 72}},
            {{15, ui::Weight::Regular}, ui::kLabel, {0.94, 0.94, 0.96, 1}, false, 16, true, 1});
  rt::send<void>(card, "addSubview:",
                 label(from, {{12, 10}, {350, 24}},
                       {{15, ui::Weight::Semibold}, ui::kLabel, {0, 0, 0, 0}, false, 0, false, 1}));
  rt::send<void>(card, "addSubview:",
                 label(text, {{12, 36}, {350, 24}},
                       {{15, ui::Weight::Regular}, ui::kLabel, {0, 0, 0, 0}, false, 0, false, 1}));
  rt::send<void>(window, "addSubview:", card);
  sys::after(seconds, [card] { rt::send<void>(card, "removeFromSuperview"); });
}

}  // namespace hostapp
