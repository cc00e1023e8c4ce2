// The system colours and the rectangle helper both kinds of picture draw
// with (the app's screens and the system's own surfaces).
#pragma once

#include "rt/geometry.hpp"
#include "ui/colors.hpp"

namespace sim::picture {

inline constexpr ui::Color kSeparator{60 / 255.0, 60 / 255.0, 67 / 255.0, 0.29};
inline constexpr ui::Color kDim{0, 0, 0, 0.2};  // behind a sheet or an alert
inline constexpr ui::Color kGrabber = ui::withAlpha(ui::kSystemGray, 0.6);

inline rt::CGRect rect(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }

}  // namespace sim::picture
