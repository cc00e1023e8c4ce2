// The library's state slot on the current simulated process: made on first
// use, gone with the process, so each process starts cold.
#include "sys/process.hpp"

#include "sim/process.hpp"

namespace sys {

void* processStateSlot(std::shared_ptr<void> (*make)()) {
  return sim::currentProcess().stateSlot(make);
}

}  // namespace sys
