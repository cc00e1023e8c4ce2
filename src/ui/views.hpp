// Views the system makes itself, and animation. On iOS: UILabel with its
// text, alignment, colours, font, corner radius and line count, and
// UIView animateWithDuration:animations:completion:.
#pragma once

#include <functional>
#include <string>

#include "rt/types.hpp"
#include "ui/drawing.hpp"

namespace ui {

struct LabelStyle {
  Font font;
  Color textColor = kWhite;
  Color background{0, 0, 0, 0};
  bool centered = false;
  double cornerRadius = 0;
  bool clipsToBounds = false;
  long numberOfLines = 1;
};

// Handed out autoreleased, as UIKit would: add it to a view or hold it in a Strong.
rt::Id makeLabel(const std::string& text, const LabelStyle& style);
// Runs `changes` animated over `seconds`, then `completion` (finished).
void animate(double seconds, std::function<void()> changes, std::function<void()> completion);

}  // namespace ui
