#include "triggers/auto_lock.hpp"

namespace triggers {

// Not built yet: start-up calls it in its place; it does nothing.
void QBAutoLock::install() {}

}  // namespace triggers
