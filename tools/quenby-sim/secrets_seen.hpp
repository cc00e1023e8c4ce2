// What a person would see of the secrets: the lists the host's screens show
// (main list, contacts, a search for each secret's name, Moments, the forward
// row), asked the way those screens ask them, never the library's own state.
#pragma once

#include <string>
#include <vector>

#include "sim/hostapp/host_app.hpp"

namespace qbsim {

// Each place a secret shows ("bob on the main list", "bob in a search for
// \"Bob\""); empty when none does. A list whose host code raises shows nothing.
std::vector<std::string> secretsShown(hostapp::HostApp& host,
                                      const std::vector<std::string>& secrets);

}  // namespace qbsim
