// Check-build stand-in: the CoreFoundation clock, and the one MacTypes
// integer the frameworks' C functions take.
#pragma once

typedef unsigned int UInt32;
typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;

extern "C" CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
