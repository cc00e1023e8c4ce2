// Describing a caught exception the way "%@" prints an NSException.
#include <exception>

#include "rt/exception.hpp"

namespace rt {

void raise(std::string name, std::string reason) { throw Exception(std::move(name), std::move(reason)); }

std::string describeCurrentException() {
  std::exception_ptr e = std::current_exception();
  if (!e) return "";
  try {
    std::rethrow_exception(e);
  } catch (const Exception& ex) {
    return ex.reason;
  } catch (const std::exception& ex) {
    return ex.what();
  } catch (...) {
    return "unknown exception";
  }
}

std::string currentExceptionName() {
  std::exception_ptr e = std::current_exception();
  if (!e) return "";
  try {
    std::rethrow_exception(e);
  } catch (const Exception& ex) {
    return ex.name;
  } catch (...) {
    return "std::exception";
  }
}

}  // namespace rt
