// Random bytes for what must differ between installs (a salt).
// On iOS: arc4random_buf, the system's cryptographic source. The simulated
// device draws them from its seeded source, so a seed still replays a run.
#pragma once

#include <cstddef>
#include <string>

namespace sys {

std::string randomBytes(std::size_t n);

}  // namespace sys
