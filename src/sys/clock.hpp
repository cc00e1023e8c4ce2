// The three clocks: monotonic media time for throttles, absolute time for
// expiry records, and the local time of day for the schedule.
#pragma once

namespace sys {

// CACurrentMediaTime(): seconds on a monotonic clock (since boot), unaffected
// by changes of the wall clock.
double mediaTime();
// CFAbsoluteTimeGetCurrent(): seconds since 2001-01-01 00:00:00 UTC.
double absoluteTime();

struct LocalTime {
  int hour = 0;    // 0-23
  int minute = 0;  // 0-59
  int second = 0;  // 0-59
};
// [NSCalendar currentCalendar] components hour, minute, second of [NSDate date].
LocalTime localTime();
// hour × 60 + minute of the local time: 0-1439.
int localMinuteOfDay();

}  // namespace sys
