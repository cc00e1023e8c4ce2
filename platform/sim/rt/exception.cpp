// Describing a caught exception the way "%@" prints an NSException.
#include <exception>
#include <map>
#include <mutex>
#include <utility>

#include "rt/exception.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"

namespace rt {
namespace {

// The name and description of the exception being handled; empty outside a
// catch block.
std::pair<std::string, std::string> current() {
  std::exception_ptr e = std::current_exception();
  if (!e) return {"", ""};
  try {
    std::rethrow_exception(e);
  } catch (const Exception& ex) {
    return {ex.name, ex.reason};
  } catch (const std::exception& ex) {
    return {"std::exception", ex.what()};
  } catch (...) {
    return {"std::exception", "unknown exception"};
  }
}

std::mutex raisedMutex;
std::map<std::string, std::uint64_t, std::less<>> raised;

}  // namespace

void raise(std::string name, std::string reason) {
  {
    std::lock_guard lock(raisedMutex);
    ++raised[name];
  }
  throw Exception(std::move(name), std::move(reason));
}

std::string describeCurrentException() { return current().second; }

std::string currentExceptionName() { return current().first; }

bool handlingHostException() {
  std::exception_ptr e = std::current_exception();
  if (!e) return false;
  try {
    std::rethrow_exception(e);
  } catch (const Exception&) {
    return true;
  } catch (...) {
    return false;
  }
}

void reportInternalFailure(const std::string& what) {
  // Outside a process no test or scenario could hear of it.
  if (sim::hasCurrentProcess()) sim::runtime().recordViolation("internal failure: " + what);
}

}  // namespace rt

namespace sim {

std::uint64_t raisedCount(std::string_view name) {
  std::lock_guard lock(rt::raisedMutex);
  auto it = rt::raised.find(name);
  return it == rt::raised.end() ? 0 : it->second;
}

}  // namespace sim
