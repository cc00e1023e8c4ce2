// A picture of the screen on top of the running app: the simulated UIKit's
// view tree laid out and drawn at 390 × 844 points, 3×, in light mode. It
// draws what the views hold (bars, tables, cells, alerts, the sheet, labels
// the system added to the window) and nothing the tree does not have.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "rt/geometry.hpp"

namespace sim::picture {

// A table row as drawn, in screen points.
struct DrawnRow {
  std::string title, state;  // state: "checked", "on", "off" or ""
  rt::CGRect frame, accessory;
};

struct Picture {
  int width = 0, height = 0;  // pixels
  double scale = 3;
  long unknownGlyphs = 0;  // glyphs no font had: drawn as boxes
  std::set<std::string> symbols;
  std::vector<std::string> texts;
  std::vector<DrawnRow> rows;
  std::vector<std::uint32_t> pixels;              // ARGB, row by row
  std::string png;                                // with the symbols' names in a tEXt chunk
  std::uint32_t pixel(double x, double y) const;  // at a point
};

class Canvas;

// Draws the screen of the current process (a blank device when no app runs).
Picture drawScreen();
// The picture a finished canvas holds, with the rows drawn on it.
Picture pictureOf(const Canvas& cv, std::vector<DrawnRow> rows = {});
// Writes the picture's PNG; false when the file cannot be written.
bool writePicture(const Picture& picture, const std::string& path);

}  // namespace sim::picture
