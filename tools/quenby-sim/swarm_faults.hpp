// The host faults a swarm can switch on, and the one table that says which
// surfaces each one feeds: a fault exempts exactly those surfaces from the
// hidden-means-hidden check, and nothing else.
#pragma once

#include <string>
#include <vector>

namespace qbsim::swarm {

enum Surface : unsigned {
  kMainList = 1u << 0,
  kContacts = 1u << 1,
  kSearch = 1u << 2,
  kMoments = 1u << 3,
  kForward = 1u << 4,
  kBanner = 1u << 5,  // banners, sounds and vibrations of messages
  kRinging = 1u << 6,
  kSuggestions = 1u << 7,  // the share sheet's people, from donated interactions
};

struct HostFault {
  const char* command;  // a `host …` line of the scenario language, before launch
  unsigned exempts;     // the surfaces it feeds
};

const std::vector<HostFault>& hostFaults();

}  // namespace qbsim::swarm
