// Readable property-list values in GoogleTest failure messages.
#pragma once

#include <ostream>

#include "base/value.hpp"

namespace base {
inline void PrintTo(const Value& v, std::ostream* os) { *os << describe(v); }
}  // namespace base
