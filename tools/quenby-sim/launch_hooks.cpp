#include "launch_hooks.hpp"

#include "startup/startup.hpp"
#include "session.hpp"

namespace qbsim {

sim::LaunchHooks launchHooks(Session& session) {
  sim::LaunchHooks hooks = session.host().launchHooks();
  hooks.libraryEntry = core::libraryEntry;
  return hooks;
}

}  // namespace qbsim
