// Check-build stand-in: CoreGraphics geometry (64-bit: CGFloat is double).
#pragma once

typedef double CGFloat;
struct CGPoint {
  CGFloat x;
  CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
  CGFloat width;
  CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect {
  CGPoint origin;
  CGSize size;
};
typedef struct CGRect CGRect;
