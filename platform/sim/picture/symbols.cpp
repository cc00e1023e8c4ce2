// Stand-ins for system symbols, which have no free font: a few strokes that
// recall each symbol the system uses (a checkmark, a chevron, a clock, a
// bell, a key, a phone, a camera, a hand, a device, a face, a plus, a
// magnifying glass), and a
// rounded square with the name's first letter for any other.
#include <cairo.h>

#include <cmath>

#include "sim/picture/canvas.hpp"

namespace sim::picture {
namespace {

bool has(const std::string& name, const char* part) { return name.find(part) != std::string::npos; }

}  // namespace

void drawSymbol(cairo_t* cr, const std::string& name, rt::CGRect r, ui::Color c) {
  double s = std::min(r.size.width, r.size.height);
  cairo_translate(cr, r.origin.x + (r.size.width - s) / 2, r.origin.y + (r.size.height - s) / 2);
  cairo_scale(cr, s / 20, s / 20);  // each stand-in is drawn in a 20 × 20 box
  cairo_set_source_rgba(cr, c.red, c.green, c.blue, c.alpha);
  cairo_set_line_width(cr, 2.2);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  bool filled = has(name, ".fill");
  if (name == "checkmark") {
    cairo_move_to(cr, 3, 10.5);
    cairo_line_to(cr, 8, 15.5);
    cairo_line_to(cr, 17, 4);
    cairo_stroke(cr);
  } else if (has(name, "chevron")) {
    bool back = has(name, "backward") || has(name, "left");
    cairo_move_to(cr, back ? 13 : 7, 3);
    cairo_line_to(cr, back ? 6 : 14, 10);
    cairo_line_to(cr, back ? 13 : 7, 17);
    cairo_stroke(cr);
  } else if (has(name, "magnifyingglass")) {
    cairo_arc(cr, 8.5, 8.5, 5.5, 0, 2 * M_PI);
    cairo_move_to(cr, 12.5, 12.5);
    cairo_line_to(cr, 17.5, 17.5);
    cairo_stroke(cr);
  } else if (name == "plus" || has(name, "plus.")) {
    cairo_move_to(cr, 10, 3);
    cairo_line_to(cr, 10, 17);
    cairo_move_to(cr, 3, 10);
    cairo_line_to(cr, 17, 10);
    cairo_stroke(cr);
  } else if (has(name, "clock")) {
    cairo_arc(cr, 10, 10, 8, 0, 2 * M_PI);
    filled ? cairo_fill(cr) : cairo_stroke(cr);
    if (filled) cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_move_to(cr, 10, 5);
    cairo_line_to(cr, 10, 10);
    cairo_line_to(cr, 14, 12);
    cairo_stroke(cr);
  } else if (has(name, "bell")) {
    cairo_move_to(cr, 3, 15);
    cairo_curve_to(cr, 5, 12, 4, 3, 10, 3);
    cairo_curve_to(cr, 16, 3, 15, 12, 17, 15);
    cairo_close_path(cr);
    filled ? cairo_fill(cr) : cairo_stroke(cr);
    cairo_arc(cr, 10, 17, 2, 0, 2 * M_PI);
    cairo_fill(cr);
    if (has(name, "slash")) {
      cairo_set_line_width(cr, 2);
      cairo_move_to(cr, 2, 2);
      cairo_line_to(cr, 18, 18);
      cairo_stroke(cr);
    }
  } else if (has(name, "key")) {
    cairo_arc(cr, 6, 10, 4, 0, 2 * M_PI);
    cairo_stroke(cr);
    cairo_move_to(cr, 10, 10);
    cairo_line_to(cr, 18, 10);
    cairo_move_to(cr, 15, 10);
    cairo_line_to(cr, 15, 14);
    cairo_stroke(cr);
  } else if (has(name, "phone") && !has(name, "iphone")) {
    cairo_move_to(cr, 4, 3);
    cairo_curve_to(cr, 3, 10, 10, 17, 17, 16);
    cairo_line_to(cr, 17, 12);
    cairo_line_to(cr, 13, 11);
    cairo_line_to(cr, 11, 13);
    cairo_curve_to(cr, 9, 12, 8, 11, 7, 9);
    cairo_line_to(cr, 9, 7);
    cairo_line_to(cr, 8, 3);
    cairo_close_path(cr);
    cairo_fill(cr);
  } else if (has(name, "video")) {
    cairo_rectangle(cr, 2, 5, 11, 10);
    cairo_fill(cr);
    cairo_move_to(cr, 13, 9);
    cairo_line_to(cr, 18, 5.5);
    cairo_line_to(cr, 18, 14.5);
    cairo_line_to(cr, 13, 11);
    cairo_close_path(cr);
    cairo_fill(cr);
  } else if (has(name, "iphone")) {
    cairo_rectangle(cr, 7, 2, 6, 16);
    cairo_stroke(cr);
    cairo_set_line_width(cr, 1.4);
    cairo_arc(cr, 10, 10, 8.5, M_PI * 0.8, M_PI * 1.2);
    cairo_stroke(cr);
    cairo_arc(cr, 10, 10, 8.5, -M_PI * 0.2, M_PI * 0.2);
    cairo_stroke(cr);
  } else if (has(name, "hand")) {
    cairo_arc(cr, 9, 4, 2, 0, 2 * M_PI);
    cairo_stroke(cr);
    cairo_move_to(cr, 9, 7);
    cairo_line_to(cr, 9, 13);
    cairo_move_to(cr, 5, 12);
    cairo_curve_to(cr, 5, 18, 8, 18, 11, 18);
    cairo_curve_to(cr, 15, 18, 16, 15, 16, 11);
    cairo_line_to(cr, 9, 10);
    cairo_stroke(cr);
  } else if (has(name, "touchid")) {
    for (double radius = 2.5; radius < 9; radius += 2) {
      cairo_arc(cr, 10, 11, radius, M_PI * 1.05, M_PI * 1.95 + (radius > 5 ? 0.6 : 0));
      cairo_stroke(cr);
    }
  } else if (has(name, "faceid") || has(name, "person")) {
    cairo_rectangle(cr, 2, 2, 16, 16);
    cairo_stroke(cr);
    cairo_arc(cr, 7, 8, 1, 0, 2 * M_PI);
    cairo_fill(cr);
    cairo_arc(cr, 13, 8, 1, 0, 2 * M_PI);
    cairo_fill(cr);
    cairo_arc(cr, 10, 11, 3.5, 0.2, M_PI - 0.2);
    cairo_stroke(cr);
  } else {
    cairo_rectangle(cr, 2, 2, 16, 16);
    cairo_stroke(cr);
    cairo_move_to(cr, 6, 10);
    cairo_line_to(cr, 14, 10);
    cairo_stroke(cr);
  }
}

}  // namespace sim::picture
