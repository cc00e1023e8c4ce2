// The UIKit forms of the ui facade's plain values: colours and system fonts.
#pragma once

#import <UIKit/UIKit.h>

#include "ui/drawing.hpp"

namespace ios {

inline UIColor* color(const ui::Color& c) { return [UIColor colorWithRed:c.red green:c.green blue:c.blue alpha:c.alpha]; }

inline UIFont* font(const ui::Font& f) {
  UIFontWeight weight = UIFontWeightRegular;
  switch (f.weight) {
    case ui::Weight::Regular: weight = UIFontWeightRegular; break;
    case ui::Weight::Medium: weight = UIFontWeightMedium; break;
    case ui::Weight::Semibold: weight = UIFontWeightSemibold; break;
    case ui::Weight::Bold: weight = UIFontWeightBold; break;
  }
  return [UIFont systemFontOfSize:f.size weight:weight];
}

}  // namespace ios
