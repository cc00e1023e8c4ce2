// The UIKit forms of the ui facade's plain values: colours (ui/colors.mm)
// and system fonts.
#pragma once

#import <UIKit/UIKit.h>

#include "ui/drawing.hpp"

namespace ios {

// The dynamic system colour for one of ui/colors.hpp's named values, else
// the plain RGB colour.
UIColor* color(const ui::Color& c);

inline UIFont* font(const ui::Font& f) {
  UIFontWeight weight = UIFontWeightRegular;
  switch (f.weight) {
    case ui::Weight::Regular:
      weight = UIFontWeightRegular;
      break;
    case ui::Weight::Medium:
      weight = UIFontWeightMedium;
      break;
    case ui::Weight::Semibold:
      weight = UIFontWeightSemibold;
      break;
    case ui::Weight::Bold:
      weight = UIFontWeightBold;
      break;
  }
  return [UIFont systemFontOfSize:f.size weight:weight];
}

}  // namespace ios
