// Labels and animation on the simulated device: a label records its style,
// and an animation applies its changes at once and completes when its
// duration has passed in virtual time.
#include <cstdio>

#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sys/queue.hpp"
#include "ui/views.hpp"

namespace ui {

rt::Id makeLabel(const std::string& text, const LabelStyle& style) {
  rt::Id label = rt::send<rt::Id>(rt::getClass("UILabel"), "new");
  sim::ViewState& v = *sim::viewState(label);
  v.text = text;
  char buf[200];
  std::snprintf(buf, sizeof buf,
                "font %g/%d text rgba(%g,%g,%g,%g) on rgba(%g,%g,%g,%g)%s radius %g%s lines %ld",
                style.font.size, int(style.font.weight), style.textColor.red, style.textColor.green,
                style.textColor.blue, style.textColor.alpha, style.background.red,
                style.background.green, style.background.blue, style.background.alpha,
                style.centered ? " centered" : "", style.cornerRadius,
                style.clipsToBounds ? " clipped" : "", style.numberOfLines);
  v.style = buf;
  v.look = style;
  return sim::autorelease(label);  // as [UILabel new] handed back under ARC
}

void animate(double seconds, std::function<void()> changes, std::function<void()> completion) {
  if (changes) changes();
  if (completion) sys::after(seconds, std::move(completion));
}

}  // namespace ui
