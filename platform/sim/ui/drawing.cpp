// The drawing facade on the simulated device: images record what was drawn
// into them, and text is measured with fixed advances so layouts are stable.
// Images are handed out autoreleased, as UIKit's renderer and symbols are, and
// drawing one that was freed stops the process.
#include <cstdio>

#include "base/utf8.hpp"
#include "rt/ownership.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/drawing.hpp"

namespace ui {
namespace {

const char* weightName(Weight w) {
  switch (w) {
    case Weight::Regular:
      return "regular";
    case Weight::Medium:
      return "medium";
    case Weight::Semibold:
      return "semibold";
    case Weight::Bold:
      return "bold";
  }
  return "?";
}

std::string describe(const DrawOp& op) {
  char buf[256];
  if (const FillRect* f = std::get_if<FillRect>(&op)) {
    std::snprintf(buf, sizeof buf, "fill %g,%g %gx%g radius %g rgba(%g,%g,%g,%g)", f->rect.origin.x,
                  f->rect.origin.y, f->rect.size.width, f->rect.size.height, f->cornerRadius,
                  f->color.red, f->color.green, f->color.blue, f->color.alpha);
    return buf;
  }
  if (const DrawImage* d = std::get_if<DrawImage>(&op)) {
    sim::ImageState* img = sim::imageState(d->image);
    std::snprintf(buf, sizeof buf, " at %g,%g %gx%g clip %g", d->rect.origin.x, d->rect.origin.y,
                  d->rect.size.width, d->rect.size.height, d->clipRadius);
    return "image " + (img ? img->source : std::string("nil")) + buf;
  }
  const DrawText& t = std::get<DrawText>(op);
  std::snprintf(buf, sizeof buf, "\" at %g,%g system %g %s rgba(%g,%g,%g,%g)", t.origin.x,
                t.origin.y, t.font.size, weightName(t.font.weight), t.color.red, t.color.green,
                t.color.blue, t.color.alpha);
  return "text \"" + t.text + buf;
}

}  // namespace

rt::CGSize textSize(const std::string& text, const Font& font) {
  double width = 0;
  for (std::size_t i = 0; i < text.size();) {
    char32_t cp = base::decodeUtf8(text, i);
    width += font.size * (cp < 0x2E80 ? 0.6 : 1.0);  // wide East Asian characters take a full em
  }
  return {width, font.size * 1.2};
}

rt::Id renderImage(rt::CGSize size, double scale, bool opaque, const std::vector<DrawOp>& ops) {
  std::vector<std::string> drawing;
  for (const DrawOp& op : ops) {
    if (const DrawImage* d = std::get_if<DrawImage>(&op)) sim::touch(d->image, "drawInRect:");
    drawing.push_back(describe(op));
  }
  rt::Id image = sim::drawnImage(size, scale > 0 ? scale : 3.0, opaque, std::move(drawing));
  sim::imageState(image)->ops = ops;
  // A phone copies the pixels; here the drawing is replayed from its sources,
  // so the image keeps them (released with it).
  for (const DrawOp& op : ops)
    if (const DrawImage* d = std::get_if<DrawImage>(&op)) rt::detail::retain(d->image);
  return sim::autorelease(image);
}

rt::Id symbolImage(const std::string& name, double pointSize, Weight weight, Color tint) {
  if (name.empty()) return nullptr;
  char buf[160];
  std::snprintf(buf, sizeof buf, " %g %s rgba(%g,%g,%g,%g)", pointSize, weightName(weight),
                tint.red, tint.green, tint.blue, tint.alpha);
  // A symbol is about as wide and high as its point size.
  rt::Id image = sim::drawnImage({pointSize + 2, pointSize}, 3.0, false, {"symbol " + name + buf});
  sim::imageState(image)->symbol = name;
  sim::imageState(image)->tint = tint;
  return sim::autorelease(image);
}

rt::CGSize imageSize(rt::Id image) {
  sim::ImageState* s = sim::imageState(image);
  return s ? s->size : rt::CGSize{};
}

}  // namespace ui
