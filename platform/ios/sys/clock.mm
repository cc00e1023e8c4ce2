// The clocks on iOS: QuartzCore's media time, CoreFoundation's absolute time
// and the current calendar's time of day.
#include "sys/clock.hpp"

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

namespace sys {

double mediaTime() { return CACurrentMediaTime(); }

double absoluteTime() { return CFAbsoluteTimeGetCurrent(); }

LocalTime localTime() {
  NSDateComponents* c = [[NSCalendar currentCalendar]
      components:NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond
        fromDate:[NSDate date]];
  return LocalTime{int(c.hour), int(c.minute), int(c.second)};
}

int localMinuteOfDay() {
  LocalTime t = localTime();
  return t.hour * 60 + t.minute;
}

}  // namespace sys
