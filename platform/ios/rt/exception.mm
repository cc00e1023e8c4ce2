// Host exceptions on iOS: an NSException is read by rethrowing it inside
// @try, a C++ exception by catching its type, so the system describes both
// with the same two calls.
#include "rt/exception.hpp"

#import <Foundation/Foundation.h>

#include <exception>
#include <utility>

#include "bridge.h"
#include "sys/log.hpp"

namespace rt {
namespace {

// The name and description of the exception being handled; empty outside a
// catch block.
std::pair<std::string, std::string> current() {
  if (!std::current_exception()) return {"", ""};
  try {
    @try {
      throw;
    } @catch (NSException* e) {
      return {ios::utf8(e.name), ios::utf8(e.reason)};
    }
  } catch (const Exception& e) {
    return {e.name, e.reason};
  } catch (const std::exception& e) {
    return {"std::exception", e.what()};
  } catch (...) {
    return {"std::exception", "unknown exception"};
  }
}

}  // namespace

void raise(std::string name, std::string reason) {
  throw Exception(std::move(name), std::move(reason));
}

std::string describeCurrentException() { return current().second; }

std::string currentExceptionName() { return current().first; }

bool handlingHostException() {
  if (!std::current_exception()) return false;
  try {
    @try {
      throw;
    } @catch (NSException*) {
      return true;
    }
  } catch (const Exception&) {
    return true;
  } catch (...) {
    return false;
  }
}

void reportInternalFailure(const std::string& what) {
  sys::log("[QB] internal failure: %@", sys::privately(what));
}

}  // namespace rt

namespace ios {

void logEscaped(const char* where) noexcept {
  try {
    std::pair<std::string, std::string> e = rt::current();
    NSLog(@"Quenby: exception stopped at %s: %@: %@", where, ns(e.first), ns(e.second));
  } catch (...) {
  }
}

}  // namespace ios
