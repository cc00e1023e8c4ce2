// CoreGraphics geometry as the runtime passes it by value (CGFloat is double on
// arm64).
#pragma once

namespace rt {

struct CGPoint {
  double x = 0, y = 0;
  bool operator==(const CGPoint&) const = default;
};
struct CGSize {
  double width = 0, height = 0;
  bool operator==(const CGSize&) const = default;
};
struct CGRect {
  CGPoint origin;
  CGSize size;
  bool operator==(const CGRect&) const = default;
};

inline double midX(const CGRect& r) { return r.origin.x + r.size.width / 2; }
inline double midY(const CGRect& r) { return r.origin.y + r.size.height / 2; }

}  // namespace rt
