#include "triggers/unlock.hpp"

namespace triggers {

// Not built yet: start-up calls it in its place; it does nothing.
void QBUnlock::installLongPressWake() {}

}  // namespace triggers
