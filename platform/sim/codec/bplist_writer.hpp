// A writer of binary property lists ("bplist00"), the counterpart of the
// reader: what it writes, the reader reads back to the same values. Null
// values are left out, text that is not UTF-8 has its bad bytes replaced with
// U+FFFD, a repeated dictionary key keeps its first place and its last value,
// and dates keep microseconds, as the rest of the simulated platform's files.
#pragma once

#include <string>

#include "base/value.hpp"

namespace sim {

std::string writeBinaryPlist(const base::Value& root);

}  // namespace sim
