// Drawing images: what the system draws itself (placeholder avatars, row
// icons). On iOS: UIGraphicsImageRenderer with UIGraphicsImageRendererFormat
// (scale, opaque), UIBezierPath fills, NSString drawAtPoint:withAttributes:
// and sizeWithAttributes:, UIFont systemFontOfSize:weight:.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "rt/geometry.hpp"
#include "rt/types.hpp"

namespace ui {

struct Color {
  double red = 0, green = 0, blue = 0, alpha = 1;
  bool operator==(const Color&) const = default;
};
inline constexpr Color kWhite{1, 1, 1, 1};

enum class Weight { Regular, Medium, Semibold, Bold };

struct Font {
  double size = 17;
  Weight weight = Weight::Regular;
  bool operator==(const Font&) const = default;
};

struct FillRect {
  rt::CGRect rect;
  Color color;
  double cornerRadius = 0;
};
struct DrawText {
  std::string text;
  rt::CGPoint origin;
  Font font;
  Color color;
};
// An image drawn into `rect`, clipped to a rounded rectangle of `clipRadius`
// (UIBezierPath addClip, then drawInRect:).
struct DrawImage {
  rt::Id image = nullptr;
  rt::CGRect rect;
  double clipRadius = 0;
};
using DrawOp = std::variant<FillRect, DrawText, DrawImage>;

// The size the text takes in the font (sizeWithAttributes:).
rt::CGSize textSize(const std::string& text, const Font& font);
// A UIImage of `size` points at `scale` (0: the screen's scale) with the
// operations drawn in order.
rt::Id renderImage(rt::CGSize size, double scale, bool opaque, const std::vector<DrawOp>& ops);
// A system symbol (UIImage systemImageNamed:withConfiguration: with a
// UIImageSymbolConfiguration of point size and weight), always drawn in
// `tint` (imageWithTintColor:renderingMode: AlwaysOriginal). Nil when the
// system has no symbol of that name.
rt::Id symbolImage(const std::string& name, double pointSize, Weight weight, Color tint);
// The image's size in points.
rt::CGSize imageSize(rt::Id image);

}  // namespace ui
