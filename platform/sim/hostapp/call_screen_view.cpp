// Built of labels, as the banner is: a dark page, the caller's name and the
// kind of call at the top, the red and green round buttons at the bottom.
#include "sim/hostapp/call_screen_view.hpp"

#include "sim/hostapp/banner_view.hpp"

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/colors.hpp"

namespace hostapp {
namespace {

constexpr long kCallScreenTag = 0x43414C4C;  // "CALL"
constexpr ui::Color kClear{0, 0, 0, 0};
constexpr ui::Color kWhiteText{1, 1, 1, 1};

rt::Id keyWindow() {
  for (rt::Id w : rt::elements(rt::send<rt::Id>(sim::sharedApplication(), "windows")))
    if (sim::viewState(w)->keyWindow) return w;
  return nullptr;
}

rt::Id label(const std::string& text, rt::CGRect frame, const ui::LabelStyle& look) {
  return hostLabel(text, frame, look, "system call screen");
}

ui::LabelStyle text(double size, ui::Weight weight, ui::Color colour = kWhiteText) {
  return {{size, weight}, colour, kClear, true, 0, false, 1};
}

rt::Id roundButton(rt::Id page, double x, ui::Color colour, const std::string& caption) {
  rt::Id circle = label("", {{x, 660}, {76, 76}},
                        {{17, ui::Weight::Regular}, kWhiteText, colour, true, 38, false, 1});
  rt::send<void>(page, "addSubview:", circle);
  rt::send<void>(page, "addSubview:",
                 label(caption, {{x - 12, 744}, {100, 20}}, text(14, ui::Weight::Regular)));
  return circle;
}

}  // namespace

void showCallScreen(const std::string& caller, bool video) {
  rt::Id window = keyWindow();
  if (!window) return;
  hideCallScreen();
  rt::Id page =
      label("", {{0, 0}, {390, 844}},
            {{17, ui::Weight::Regular}, kWhiteText, {0.11, 0.12, 0.14, 1}, true, 0, false, 1});
  sim::viewState(page)->tag = kCallScreenTag;
  rt::send<void>(
      page, "addSubview:", label(caller, {{20, 110}, {350, 44}}, text(34, ui::Weight::Regular)));
  rt::send<void>(page, "addSubview:",
                 label(video ? "微信视频通话" : "微信语音通话", {{20, 158}, {350, 24}},
                       text(17, ui::Weight::Regular, {0.92, 0.92, 0.96, 0.6})));
  roundButton(page, 62, {1, 59 / 255.0, 48 / 255.0, 1}, "拒绝");
  roundButton(page, 252, ui::kSystemGreen, "接听");
  rt::send<void>(window, "addSubview:", page);
}

void hideCallScreen() {
  rt::Id window = keyWindow();
  if (!window) return;
  for (rt::Id v : std::vector<rt::Id>(sim::viewState(window)->subviews))
    if (sim::viewState(v)->tag == kCallScreenTag) rt::send<void>(v, "removeFromSuperview");
}

}  // namespace hostapp
