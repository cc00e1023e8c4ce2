// The one place a failure of the system's own work ends: every catch-all logs
// the failing step's "… ex: %@" line and, when what it caught is not the
// host's exception but a fault of ours, reports it (the simulation fails the
// test on it). Hook bodies get the same through host::Hook::run; everything
// else goes through guarded(), or quietly() where the host's failure is an
// ordinary answer. The exception is written privately: a host's
// reason can name a contact.
#pragma once

#include <string>
#include <string_view>

#include "rt/exception.hpp"
#include "sys/log.hpp"

namespace sys {

// A step's failure line, "[QB] reveal ex: %@": the exception fills its last
// "%@". Must be given; a step cannot fail in silence.
struct ExLine {
  consteval ExLine(const char* line) : text(line) {  // NOLINT: implicit on purpose
    if (!line || !std::string_view(line).ends_with("%@"))
      throw "a failure line ends in the exception's \"%@\"";  // a compile error, at the call
  }
  const char* text;
};

// Inside a catch block: logs `line` with `args` then the exception, and
// reports a fault that is not the host's.
template <typename... Args>
void logCaught(ExLine line, const Args&... args) {
  std::string what = rt::describeCurrentException();
  log(line.text, args..., privately(what));
  if (!rt::handlingHostException()) rt::reportInternalFailure(what);
}

// `fn()`, or `fallback` after logCaught(line, lineArgs...) if it raises.
template <typename F, typename T, typename... Args>
T guarded(ExLine line, F&& fn, T fallback, const Args&... lineArgs) {
  try {
    return fn();
  } catch (...) {
    logCaught(line, lineArgs...);
    return fallback;
  }
}

template <typename F>
void guarded(ExLine line, F&& fn) {
  try {
    fn();
  } catch (...) {
    logCaught(line);
  }
}

// For the few steps where the host raising is an ordinary answer (a contact
// without the property asked, a manager without a list): the host's exception
// is swallowed without a line, and a fault of ours is still reported.
inline void reportIfOurs() {
  if (!rt::handlingHostException()) rt::reportInternalFailure(rt::describeCurrentException());
}

template <typename F, typename T>
T quietly(F&& fn, T fallback) {
  try {
    return fn();
  } catch (...) {
    reportIfOurs();
    return fallback;
  }
}

template <typename F>
void quietly(F&& fn) {
  try {
    fn();
  } catch (...) {
    reportIfOurs();
  }
}

}  // namespace sys
