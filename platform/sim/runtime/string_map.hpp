// A map keyed by text that is looked up with a string_view without building
// a std::string: selectors, class names and interned strings are asked for on
// every message, and the allocation was most of their cost.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace sim {

struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

template <typename V>
using StringMap = std::unordered_map<std::string, V, StringHash, std::equal_to<>>;

}  // namespace sim
