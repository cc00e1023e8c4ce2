// What a `launch` loads: the host app and the library. Kept in one place so
// that each subsystem joins the launch here as it is built.
#pragma once

#include "sim/process.hpp"

namespace qbsim {

class Session;

sim::LaunchHooks launchHooks(Session& session);

}  // namespace qbsim
