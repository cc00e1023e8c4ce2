// The simulated runtime's parts are defined in their own files; the whole is
// made and destroyed with its process (the current runtime, sim::runtime(),
// is the current process's, defined in process.cpp).
#include "sim/runtime/runtime.hpp"

namespace sim {

Runtime::Runtime() = default;
Runtime::~Runtime() = default;

}  // namespace sim
