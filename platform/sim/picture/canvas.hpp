// A drawing surface in points at the screen's scale, on cairo, with text set
// by pango in a CJK-capable sans face. Counts glyphs the fonts lacked, so a
// picture can tell when text came out as boxes.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "rt/geometry.hpp"
#include "ui/drawing.hpp"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace sim::picture {

enum class Align { Left, Center, Right };

class Canvas {
 public:
  Canvas(double width, double height, double scale);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  void fill(rt::CGRect r, ui::Color c, double radius = 0);
  void stroke(rt::CGRect r, ui::Color c, double lineWidth, double radius = 0);
  void line(rt::CGPoint a, rt::CGPoint b, ui::Color c, double width);
  void circle(rt::CGPoint centre, double radius, ui::Color c);
  // Text wrapped to the rect's width (one line, ellipsized, when `oneLine`),
  // vertically centred in the rect when `middle`.
  void text(const std::string& s, rt::CGRect r, const ui::Font& f, ui::Color c,
            Align a = Align::Left, bool oneLine = false, bool middle = false);
  // The height of `s` wrapped to `width`.
  double measure(const std::string& s, const ui::Font& f, double width);
  // The stand-in of a system symbol in `r`; the name is remembered.
  void symbol(const std::string& name, rt::CGRect r, ui::Color c);
  void save();
  void restore();
  void clip(rt::CGRect r, double radius);
  void translate(double dx, double dy);
  void scale(double sx, double sy);

  long unknownGlyphs() const { return unknownGlyphs_; }
  const std::set<std::string>& symbols() const { return symbols_; }
  const std::vector<std::string>& texts() const { return texts_; }
  int pixelWidth() const;
  int pixelHeight() const;
  // The pixels, ARGB, row by row.
  std::vector<std::uint32_t> pixels() const;
  // The picture as PNG bytes.
  std::string png() const;
  cairo_t* cairo() { return cr_; }

 private:
  void path(rt::CGRect r, double radius);
  cairo_surface_t* surface_;
  cairo_t* cr_;
  long unknownGlyphs_ = 0;
  std::set<std::string> symbols_;
  std::vector<std::string> texts_;
};

// Draws the stand-in for symbol `name` (called by Canvas::symbol).
void drawSymbol(cairo_t* cr, const std::string& name, rt::CGRect r, ui::Color c);

}  // namespace sim::picture
