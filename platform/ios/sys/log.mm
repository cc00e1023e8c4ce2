// The log on iOS is NSLog, one finished line per call.
#include "sys/log.hpp"

#import <Foundation/Foundation.h>

#include "bridge.h"

namespace sys {

void logLine(std::string_view line) { NSLog(@"%@", ios::ns(line)); }

}  // namespace sys
