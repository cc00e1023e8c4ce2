// Scaling a PNG down with cairo's good filter; the text chunks (the symbols'
// names) are carried over.
#include "sim/picture/shrink.hpp"

#include <cairo.h>

#include <cstring>

#include "sim/picture/png_text.hpp"

namespace sim::picture {
namespace {

struct Reader {
  const std::string* bytes;
  std::size_t at = 0;
};

cairo_status_t readBytes(void* closure, unsigned char* data, unsigned int length) {
  Reader& r = *static_cast<Reader*>(closure);
  if (r.at + length > r.bytes->size()) return CAIRO_STATUS_READ_ERROR;
  std::memcpy(data, r.bytes->data() + r.at, length);
  r.at += length;
  return CAIRO_STATUS_SUCCESS;
}

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string shrunk(const std::string& png, int width) {
  Reader reader{&png};
  cairo_surface_t* source = cairo_image_surface_create_from_png_stream(readBytes, &reader);
  std::string out;
  if (cairo_surface_status(source) == CAIRO_STATUS_SUCCESS && width > 0) {
    int w = cairo_image_surface_get_width(source), h = cairo_image_surface_get_height(source);
    double factor = double(width) / w;
    cairo_surface_t* target =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, int(h * factor + 0.5));
    cairo_t* cr = cairo_create(target);
    cairo_scale(cr, factor, factor);
    cairo_set_source_surface(cr, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_write_to_png_stream(target, appendBytes, &out);
    cairo_surface_destroy(target);
    out = withTextChunks(out, textChunks(png));
  }
  cairo_surface_destroy(source);
  return out;
}

}  // namespace sim::picture
