// The system log of the simulated device: lines and marked segments as the
// device keeps them, readable by anyone holding the phone.
#include "sys/log.hpp"

#include "sim/process.hpp"

namespace sys {

void logLine(std::string_view line) { sim::currentProcess().device().writeLog(std::string(line)); }

void logSegments(const std::vector<std::string>& segments) {
  sim::currentProcess().device().writeLog(segments);
}

}  // namespace sys
