// The cairo surface and pango text behind a picture.
#include "sim/picture/canvas.hpp"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

namespace sim::picture {
namespace {

constexpr const char* kFamily = "Noto Sans CJK SC, Noto Sans, DejaVu Sans, sans-serif";

void setColor(cairo_t* cr, ui::Color c) {
  cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha);
}

PangoWeight pangoWeight(ui::Weight w) {
  switch (w) {
    case ui::Weight::Medium:
      return PANGO_WEIGHT_MEDIUM;
    case ui::Weight::Semibold:
      return PANGO_WEIGHT_SEMIBOLD;
    case ui::Weight::Bold:
      return PANGO_WEIGHT_BOLD;
    default:
      return PANGO_WEIGHT_NORMAL;
  }
}

struct Layout {
  PangoLayout* layout;
  explicit Layout(cairo_t* cr, const std::string& s, const ui::Font& f, double width, bool oneLine)
      : layout(pango_cairo_create_layout(cr)) {
    PangoFontDescription* d = pango_font_description_from_string(kFamily);
    pango_font_description_set_absolute_size(d, f.size * PANGO_SCALE);
    pango_font_description_set_weight(d, pangoWeight(f.weight));
    pango_layout_set_font_description(layout, d);
    pango_font_description_free(d);
    pango_layout_set_text(layout, s.c_str(), int(s.size()));
    pango_layout_set_width(layout, int(std::max(1.0, width) * PANGO_SCALE));
    if (oneLine)
      pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    else
      pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
  }
  ~Layout() { g_object_unref(layout); }
  double height() const {
    int w = 0, h = 0;
    pango_layout_get_size(layout, &w, &h);
    return double(h) / PANGO_SCALE;
  }
};

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

Canvas::Canvas(double width, double height, double scale)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, int(std::lround(width * scale)),
                                          int(std::lround(height * scale)))),
      cr_(cairo_create(surface_)) {
  cairo_scale(cr_, scale, scale);
}

Canvas::~Canvas() {
  cairo_destroy(cr_);
  cairo_surface_destroy(surface_);
}

void Canvas::path(rt::CGRect r, double radius) {
  double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
  radius = std::min({radius, w / 2, h / 2});
  cairo_new_sub_path(cr_);
  if (radius <= 0) {
    cairo_rectangle(cr_, x, y, w, h);
    return;
  }
  cairo_arc(cr_, x + w - radius, y + radius, radius, -M_PI / 2, 0);
  cairo_arc(cr_, x + w - radius, y + h - radius, radius, 0, M_PI / 2);
  cairo_arc(cr_, x + radius, y + h - radius, radius, M_PI / 2, M_PI);
  cairo_arc(cr_, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
  cairo_close_path(cr_);
}

void Canvas::fill(rt::CGRect r, ui::Color c, double radius) {
  path(r, radius);
  setColor(cr_, c);
  cairo_fill(cr_);
}

void Canvas::stroke(rt::CGRect r, ui::Color c, double lineWidth, double radius) {
  path(r, radius);
  setColor(cr_, c);
  cairo_set_line_width(cr_, lineWidth);
  cairo_stroke(cr_);
}

void Canvas::line(rt::CGPoint a, rt::CGPoint b, ui::Color c, double width) {
  cairo_move_to(cr_, a.x, a.y);
  cairo_line_to(cr_, b.x, b.y);
  setColor(cr_, c);
  cairo_set_line_width(cr_, width);
  cairo_stroke(cr_);
}

void Canvas::circle(rt::CGPoint centre, double radius, ui::Color c) {
  cairo_new_sub_path(cr_);
  cairo_arc(cr_, centre.x, centre.y, radius, 0, 2 * M_PI);
  setColor(cr_, c);
  cairo_fill(cr_);
}

void Canvas::text(const std::string& s, rt::CGRect r, const ui::Font& f, ui::Color c, Align a,
                  bool oneLine, bool middle) {
  if (s.empty()) return;
  Layout l(cr_, s, f, r.size.width, oneLine);
  pango_layout_set_alignment(l.layout, a == Align::Center  ? PANGO_ALIGN_CENTER
                                       : a == Align::Right ? PANGO_ALIGN_RIGHT
                                                           : PANGO_ALIGN_LEFT);
  unknownGlyphs_ += pango_layout_get_unknown_glyphs_count(l.layout);
  texts_.push_back(s);
  double y = middle ? r.origin.y + (r.size.height - l.height()) / 2 : r.origin.y;
  cairo_move_to(cr_, r.origin.x, y);
  setColor(cr_, c);
  pango_cairo_show_layout(cr_, l.layout);
}

double Canvas::measure(const std::string& s, const ui::Font& f, double width) {
  if (s.empty()) return 0;
  return Layout(cr_, s, f, width, false).height();
}

void Canvas::symbol(const std::string& name, rt::CGRect r, ui::Color c) {
  symbols_.insert(name);
  cairo_save(cr_);
  drawSymbol(cr_, name, r, c);
  cairo_restore(cr_);
}

void Canvas::save() { cairo_save(cr_); }
void Canvas::restore() { cairo_restore(cr_); }
void Canvas::clip(rt::CGRect r, double radius) {
  path(r, radius);
  cairo_clip(cr_);
}
void Canvas::translate(double dx, double dy) { cairo_translate(cr_, dx, dy); }
void Canvas::scale(double sx, double sy) { cairo_scale(cr_, sx, sy); }

int Canvas::pixelWidth() const { return cairo_image_surface_get_width(surface_); }
int Canvas::pixelHeight() const { return cairo_image_surface_get_height(surface_); }

std::vector<std::uint32_t> Canvas::pixels() const {
  cairo_surface_flush(surface_);
  int w = pixelWidth(), h = pixelHeight(), stride = cairo_image_surface_get_stride(surface_);
  const unsigned char* data = cairo_image_surface_get_data(surface_);
  std::vector<std::uint32_t> out(std::size_t(w) * std::size_t(h));
  for (int y = 0; y < h; ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(data + std::ptrdiff_t(y) * stride);
    std::copy(row, row + w, out.begin() + std::ptrdiff_t(y) * w);
  }
  return out;
}

std::string Canvas::png() const {
  std::string bytes;
  cairo_surface_write_to_png_stream(surface_, appendBytes, &bytes);
  return bytes;
}

}  // namespace sim::picture
