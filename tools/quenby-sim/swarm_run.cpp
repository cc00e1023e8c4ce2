#include <chrono>
#include <set>
#include <vector>

#include "swarm.hpp"
#include "swarm_driver.hpp"
#include "swarm_faults.hpp"

namespace qbsim::swarm {

int runSwarm(const SwarmOptions& options, std::ostream& out) {
  auto started = std::chrono::steady_clock::now();
  long steps = 0;
  std::set<std::string> faults;
  // Every seed asked for runs: a failure early on must not hide the ones after it.
  std::vector<std::uint64_t> failed;
  for (std::uint64_t k = 0; k < options.count; ++k) {
    std::uint64_t seed = options.first + k;
    SeedRun r = runSeed(seed, options.steps, options.trace ? &out : nullptr);
    steps += r.steps;
    faults.insert(r.faults.begin(), r.faults.end());
    if (!r.passed) {
      out << r.failure;
      failed.push_back(seed);
    }
  }
  double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  out << steps << " steps, " << faults.size() << " of " << hostFaults().size()
      << " host faults exercised";
  if (options.count > 1) out << ", wall time " << seconds(wall) << " s";
  out << "\n";
  if (!failed.empty()) {
    out << "failing seeds:";
    for (std::uint64_t seed : failed) out << " " << seed;
    out << "\n";
  }
  out << options.count - failed.size() << " passed, " << failed.size() << " failed\n";
  return failed.empty() ? 0 : 1;
}

}  // namespace qbsim::swarm
