// Drawing on iOS: UIGraphicsImageRenderer, rounded UIBezierPath fills and
// NSString's UIKit drawing, in the order the operations are listed.
#include "ui/drawing.hpp"

#import <UIKit/UIKit.h>

#include "bridge.h"
#include "uikit_values.h"

namespace ui {

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
        CGRect r{{f->rect.origin.x, f->rect.origin.y}, {f->rect.size.width, f->rect.size.height}};
        [ios::color(f->color) setFill];
        [[UIBezierPath bezierPathWithRoundedRect:r cornerRadius:f->cornerRadius] fill];
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

}  // namespace ui
