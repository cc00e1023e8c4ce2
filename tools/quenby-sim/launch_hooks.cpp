#include "launch_hooks.hpp"

#include "core/startup.hpp"

namespace qbsim {

sim::LaunchHooks launchHooks(Session&) {
  sim::LaunchHooks hooks;
  hooks.libraryEntry = core::libraryEntry;
  return hooks;
}

}  // namespace qbsim
