// Storage for the library's process-wide state. The platform keeps one slot
// per process: a static on iOS, one per simulated process in the simulation,
// so that every simulated process starts with fresh state.
#pragma once

#include <memory>

namespace sys {

// The process's state object, made by `make` the first time (under a lock, so
// concurrent first calls make it once). Lives until the process ends.
void* processStateSlot(std::shared_ptr<void> (*make)());

}  // namespace sys
