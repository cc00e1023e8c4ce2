// Unicode string semantics of the simulated Foundation, from ICU: case mapping
// and the Finder-like comparison behind localizedStandardCompare:.
#pragma once

#include <string>
#include <string_view>

namespace sim {

std::string icuLowercase(std::string_view utf8);
std::string icuUppercase(std::string_view utf8);
// Locale-aware, numeric-aware comparison (digits by value, "item2" before
// "item10"); strings that collate equal but differ are ordered by their bytes
// so that the order is total. Returns -1, 0 or 1.
int icuStandardCompare(std::string_view a, std::string_view b, const std::string& locale);

}  // namespace sim
