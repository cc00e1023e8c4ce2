// QBSchedule: the daily schedule driver.
#pragma once

namespace triggers {

struct QBSchedule {
  static void install();
};

}  // namespace triggers
