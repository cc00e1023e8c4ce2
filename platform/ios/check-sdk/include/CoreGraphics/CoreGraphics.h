// Check-build stand-in: CoreGraphics geometry (64-bit: CGFloat is double)
// and saving the graphics state around a clip.
#pragma once

#include <float.h>

typedef double CGFloat;
#define CGFLOAT_MAX DBL_MAX
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

typedef struct CGContext *CGContextRef;
extern "C" {
void CGContextSaveGState(CGContextRef c);
void CGContextRestoreGState(CGContextRef c);
}
