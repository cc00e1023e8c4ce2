// Who made an object: the return addresses of its alloc, taken when it was
// made and named only when asked, from the executable's own symbol table.
// The first frame that belongs to a known layer decides: the system's (its
// namespaces in src/) or the host's, the tools', the tests' and the
// benchmarks'. The facades' and the simulated frameworks' own frames are
// passed over, as they make objects for whoever called them. Frames past the
// first one outside the executable are read only when none before it decides.
#pragma once

#include <array>
#include <string>

#include "rt/types.hpp"

namespace sim {

using AllocSite = std::array<void*, 10>;

// The call stack above the caller, as far as it fits.
void captureAllocSite(AllocSite& site);

enum class Maker { System, Other };
Maker makerOf(const AllocSite& site);
// The demangled name of the function that decided `makerOf`, for a report.
std::string madeIn(const AllocSite& site);

}  // namespace sim
