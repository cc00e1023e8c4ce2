// NSLog. Lines keep their Objective-C format strings and are filled in by the
// base formatter; the platform's sink receives each finished line.
#pragma once

#include <string>
#include <string_view>

#include "base/format.hpp"

namespace sys {

// NSLog(@"%@", line).
void logLine(std::string_view line);

template <typename... Args>
void log(std::string_view fmt, const Args&... args) {
  logLine(base::format(fmt, args...));
}

}  // namespace sys
