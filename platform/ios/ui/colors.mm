// The system's colours on iOS. ui/colors.hpp names each colour by its light
// value; that value becomes the dynamic UIColor it stands for, so the
// screens follow the appearance, and a tint colour at another alpha becomes
// that colour with the alpha. Any other value is a plain RGB colour (a black
// that merely equals the label colour's light value at another alpha stays
// black).
#include "ui/colors.hpp"

#import <UIKit/UIKit.h>

#include "uikit_values.h"

namespace ios {
namespace {

struct Named {
  ui::Color light;
  UIColor* (*dynamic)();
  bool tint;  // also stands for itself at any other alpha
};

const Named kNamed[] = {
    {ui::kSystemGreen, [] { return UIColor.systemGreenColor; }, true},
    {ui::kSystemBlue, [] { return UIColor.systemBlueColor; }, true},
    {ui::kSystemOrange, [] { return UIColor.systemOrangeColor; }, true},
    {ui::kSystemGray, [] { return UIColor.systemGrayColor; }, true},
    {ui::kSystemIndigo, [] { return UIColor.systemIndigoColor; }, true},
    {ui::kSystemTeal, [] { return UIColor.systemTealColor; }, true},
    {ui::kLabel, [] { return UIColor.labelColor; }, false},
    {ui::kSecondaryLabel, [] { return UIColor.secondaryLabelColor; }, false},
    {ui::kTertiaryLabel, [] { return UIColor.tertiaryLabelColor; }, false},
    {ui::kGroupedBackground, [] { return UIColor.systemGroupedBackgroundColor; }, false},
};

bool sameHue(const ui::Color& a, const ui::Color& b) {
  return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

}  // namespace

UIColor* color(const ui::Color& c) {
  for (const Named& n : kNamed) {
    if (c == n.light) return n.dynamic();
    if (n.tint && sameHue(c, n.light)) return [n.dynamic() colorWithAlphaComponent:c.alpha];
  }
  return [UIColor colorWithRed:c.red green:c.green blue:c.blue alpha:c.alpha];
}

}  // namespace ios
