#include "triggers/schedule.hpp"

namespace triggers {

// Not built yet: start-up calls it in its place; it does nothing.
void QBSchedule::install() {}

}  // namespace triggers
