// Check-build stand-in: the CoreFoundation clock.
#pragma once

typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;

extern "C" CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
