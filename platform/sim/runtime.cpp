// The simulated runtime's parts are defined in their own files; the whole is
// made and destroyed with its process.
#include "sim/runtime.hpp"

namespace sim {

Runtime::Runtime() = default;
Runtime::~Runtime() = default;

}  // namespace sim
