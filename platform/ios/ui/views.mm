// Labels and animation on iOS: a styled UILabel, and UIView's block
// animation with its completion.
#include "ui/views.hpp"

#import <UIKit/UIKit.h>

#include "bridge.h"
#include "uikit_values.h"

namespace ui {

rt::Id makeLabel(const std::string& text, const LabelStyle& style) {
  UILabel* label = [UILabel new];
  label.text = ios::ns(text);
  label.font = ios::font(style.font);
  label.textColor = ios::color(style.textColor);
  label.backgroundColor = ios::color(style.background);
  label.textAlignment = style.centered ? NSTextAlignmentCenter : NSTextAlignmentNatural;
  label.layer.cornerRadius = style.cornerRadius;
  label.clipsToBounds = style.clipsToBounds;
  label.numberOfLines = style.numberOfLines;
  return ios::handle(label);
}

void animate(double seconds, std::function<void()> changes, std::function<void()> completion) {
  [UIView animateWithDuration:seconds
      animations:^{
        if (changes) ios::shielded("animation", changes);
      }
      completion:^(BOOL) {
        if (completion) ios::shielded("animation completion", completion);
      }];
}

}  // namespace ui
