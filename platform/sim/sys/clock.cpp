// The clocks of the simulated device: media and absolute time and the local
// time of day, all in its virtual time.
#include "sys/clock.hpp"

#include <cmath>

#include "sim/process.hpp"

namespace sys {

using sim::currentProcess;

double mediaTime() { return currentProcess().device().mediaTime(); }
double absoluteTime() { return currentProcess().device().absoluteTime(); }

LocalTime localTime() {
  int s = int(std::floor(currentProcess().device().localSecondOfDay()));
  return LocalTime{s / 3600, (s / 60) % 60, s % 60};
}

int localMinuteOfDay() {
  LocalTime t = localTime();
  return t.hour * 60 + t.minute;
}

}  // namespace sys
