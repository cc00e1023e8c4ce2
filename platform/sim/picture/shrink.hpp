// Smaller copies of pictures, for pages that show them at a fraction of the
// phone's size.
#pragma once

#include <string>

namespace sim::picture {

// `png` scaled down to `width` pixels wide (proportionally), its text chunks
// kept. Empty when `png` cannot be read.
std::string shrunk(const std::string& png, int width);

}  // namespace sim::picture
