// The system colours the panel paints with, as their light-appearance values.
// On iOS each is the UIColor class property named beside it (a dynamic colour
// that follows the appearance); the alpha variants are colorWithAlphaComponent:.
#pragma once

#include "ui/drawing.hpp"

namespace ui {

inline constexpr Color kSystemGreen{52 / 255.0, 199 / 255.0, 89 / 255.0, 1};   // systemGreenColor
inline constexpr Color kSystemBlue{0, 122 / 255.0, 1, 1};                      // systemBlueColor
inline constexpr Color kSystemOrange{1, 149 / 255.0, 0, 1};                    // systemOrangeColor
inline constexpr Color kSystemGray{142 / 255.0, 142 / 255.0, 147 / 255.0, 1};  // systemGrayColor
inline constexpr Color kSystemIndigo{88 / 255.0, 86 / 255.0, 214 / 255.0, 1};  // systemIndigoColor
inline constexpr Color kSystemTeal{48 / 255.0, 176 / 255.0, 199 / 255.0, 1};   // systemTealColor
inline constexpr Color kLabel{0, 0, 0, 1};                                     // labelColor
inline constexpr Color kSecondaryLabel{60 / 255.0, 60 / 255.0, 67 / 255.0,
                                       0.6};  // secondaryLabelColor
inline constexpr Color kTertiaryLabel{60 / 255.0, 60 / 255.0, 67 / 255.0,
                                      0.3};  // tertiaryLabelColor
inline constexpr Color kGroupedBackground{242 / 255.0, 242 / 255.0, 247 / 255.0,
                                          1};  // systemGroupedBackgroundColor

inline constexpr Color withAlpha(Color c, double alpha) {
  return Color{c.red, c.green, c.blue, alpha};
}

}  // namespace ui
