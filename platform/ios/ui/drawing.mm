// Drawing on iOS: UIGraphicsImageRenderer, rounded UIBezierPath fills and
// clips, NSString's and UIImage's UIKit drawing, in the order the operations
// are listed; and SF Symbols in a fixed colour.
#include "ui/drawing.hpp"

#import <UIKit/UIKit.h>

#include "bridge.h"
#include "uikit_values.h"

namespace ui {
namespace {

CGRect cg(const rt::CGRect& r) {
  return CGRect{{r.origin.x, r.origin.y}, {r.size.width, r.size.height}};
}

// The clip lasts for this image only: the graphics state is saved around it.
void drawImage(const DrawImage& d) {
  id image = ios::object(d.image);
  if (![image isKindOfClass:[UIImage class]]) return;
  CGContextRef context = UIGraphicsGetCurrentContext();
  CGContextSaveGState(context);
  if (d.clipRadius > 0)
    [[UIBezierPath bezierPathWithRoundedRect:cg(d.rect) cornerRadius:d.clipRadius] addClip];
  [(UIImage*)image drawInRect:cg(d.rect)];
  CGContextRestoreGState(context);
}

UIImageSymbolWeight symbolWeight(Weight w) {
  switch (w) {
    case Weight::Regular:
      return UIImageSymbolWeightRegular;
    case Weight::Medium:
      return UIImageSymbolWeightMedium;
    case Weight::Semibold:
      return UIImageSymbolWeightSemibold;
    case Weight::Bold:
      return UIImageSymbolWeightBold;
  }
  return UIImageSymbolWeightRegular;
}

}  // namespace

rt::CGSize textSize(const std::string& text, const Font& f) {
  CGSize s = [ios::ns(text) sizeWithAttributes:@{NSFontAttributeName : ios::font(f)}];
  return {s.width, s.height};
}

rt::Id renderImage(rt::CGSize size, double scale, bool opaque, const std::vector<DrawOp>& ops) {
  UIGraphicsImageRendererFormat* format = [UIGraphicsImageRendererFormat preferredFormat];
  if (scale > 0) format.scale = scale;
  format.opaque = opaque;
  UIGraphicsImageRenderer* renderer =
      [[UIGraphicsImageRenderer alloc] initWithSize:CGSize{size.width, size.height} format:format];
  const std::vector<DrawOp>* list = &ops;
  UIImage* image = [renderer imageWithActions:^(UIGraphicsImageRendererContext*) {
    for (const DrawOp& op : *list) {
      if (const FillRect* f = std::get_if<FillRect>(&op)) {
        [ios::color(f->color) setFill];
        [[UIBezierPath bezierPathWithRoundedRect:cg(f->rect) cornerRadius:f->cornerRadius] fill];
      } else if (const DrawImage* d = std::get_if<DrawImage>(&op)) {
        drawImage(*d);
      } else {
        const DrawText& t = std::get<DrawText>(op);
        [ios::ns(t.text) drawAtPoint:CGPoint{t.origin.x, t.origin.y}
                      withAttributes:@{
                        NSFontAttributeName : ios::font(t.font),
                        NSForegroundColorAttributeName : ios::color(t.color)
                      }];
      }
    }
  }];
  return ios::handle(image);
}

rt::Id symbolImage(const std::string& name, double pointSize, Weight weight, Color tint) {
  UIImageSymbolConfiguration* config =
      [UIImageSymbolConfiguration configurationWithPointSize:pointSize weight:symbolWeight(weight)];
  UIImage* symbol = [UIImage systemImageNamed:ios::ns(name) withConfiguration:config];
  if (!symbol) return nullptr;
  return ios::handle([symbol imageWithTintColor:ios::color(tint)
                                  renderingMode:UIImageRenderingModeAlwaysOriginal]);
}

rt::CGSize imageSize(rt::Id image) {
  id i = ios::object(image);
  if (![i isKindOfClass:[UIImage class]]) return {0, 0};
  CGSize s = [(UIImage*)i size];
  return {s.width, s.height};
}

}  // namespace ui
