#include "launch_hooks.hpp"

namespace qbsim {

sim::LaunchHooks launchHooks(Session&) {
  // The library's entry point and the simulated host app join here as they
  // are built; until then a launch is the bare platform launch sequence.
  return sim::LaunchHooks{};
}

}  // namespace qbsim
