// Host exceptions. Where the real host raises an NSException the simulated one
// throws rt::Exception; the system catches both with catch (...) and describes
// what it caught with one call.
#pragma once

#include <exception>
#include <string>

namespace rt {

struct Exception : std::exception {
  Exception(std::string n, std::string r) : name(std::move(n)), reason(std::move(r)) {}
  const char* what() const noexcept override { return reason.c_str(); }
  std::string name;
  std::string reason;
};

// [NSException raise:format:] — throws rt::Exception.
[[noreturn]] void raise(std::string name, std::string reason);

// Inside a catch block: what "%@" prints for the exception being handled
// (NSException's description, which is its reason). Outside one: "".
std::string describeCurrentException();
// Inside a catch block: the exception's name ("NSUnknownKeyException", …);
// for a non-Objective-C exception "std::exception".
std::string currentExceptionName();
// Inside a catch block: whether the exception being handled is the host's (an
// NSException) rather than a fault of the system's own C++ (std::out_of_range,
// a failed check of ours).
bool handlingHostException();
// A guard caught a fault of the system's own code. The simulation records it as
// a violation, which fails the test or scenario that caused it; on iOS the line
// "[QB] internal failure: %@" is logged, with `what` kept private.
void reportInternalFailure(const std::string& what);

}  // namespace rt
