// The log on iOS is the unified log, one finished line per call. A username
// goes in a private argument: the persistent log shows "<private>" in its
// place unless a debugging profile is installed, so a secret's name is not
// readable in Console or a sysdiagnose. os_log takes only constant formats,
// so lines are written by their number of segments.
#include "sys/log.hpp"

#include <os/log.h>

#include <string>
#include <vector>

namespace sys {
namespace {

void write(const std::vector<std::string>& s) {
  os_log_t log = OS_LOG_DEFAULT;
  os_log_type_t type = OS_LOG_TYPE_DEFAULT;
  switch (s.size()) {
    case 1:
      os_log_with_type(log, type, "%{public}s", s[0].c_str());
      return;
    case 3:
      os_log_with_type(log, type, "%{public}s%{private}s%{public}s", s[0].c_str(), s[1].c_str(),
                       s[2].c_str());
      return;
    case 5:
      os_log_with_type(log, type, "%{public}s%{private}s%{public}s%{private}s%{public}s",
                       s[0].c_str(), s[1].c_str(), s[2].c_str(), s[3].c_str(), s[4].c_str());
      return;
    default: {
      // More private arguments than any line has: each is written redacted.
      std::string line;
      for (std::size_t i = 0; i < s.size(); ++i) line += i % 2 ? "<private>" : s[i];
      os_log_with_type(log, type, "%{public}s", line.c_str());
    }
  }
}

}  // namespace

void logLine(std::string_view line) { write({std::string(line)}); }

void logSegments(const std::vector<std::string>& segments) { write(segments); }

}  // namespace sys
