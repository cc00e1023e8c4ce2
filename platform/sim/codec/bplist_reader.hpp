// A reader of binary property lists ("bplist00"). Settings files are
// untrusted input, and libplist's binary parser hands back strings that trip
// its own assertions; this reader checks every offset, length and reference,
// and refuses what it cannot read in full.
#pragma once

#include <optional>
#include <string_view>

#include "base/value.hpp"

namespace sim {

std::optional<base::Value> readBinaryPlist(std::string_view bytes);

}  // namespace sim
