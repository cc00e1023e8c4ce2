// `quenby-sim swarm`: seeded random user days on a fresh device each, with a
// seed-chosen swarm of host faults, devices and settings, judged after every
// step by a checker that keeps its own model. A run is a pure function of the
// seed: the same seed prints the same transcript, and `--seed S --trace`
// replays a failure step by step.
#pragma once

#include <cstdint>
#include <ostream>
#include <set>
#include <string>

namespace qbsim::swarm {

struct SeedRun {
  bool passed = true;
  int steps = 0;
  std::string transcript;  // every step and what it did
  std::string failure;     // seed, step, invariant and the last 20 steps
  std::set<std::string> faults;
};

// One seed: `live`, when given, receives every step and log line as it happens.
SeedRun runSeed(std::uint64_t seed, int steps, std::ostream* live = nullptr);

struct SwarmOptions {
  std::uint64_t first = 1;
  std::uint64_t count = 100;
  int steps = 200;
  bool trace = false;
};

// Runs every seed asked for, printing each failure as it comes, then the failing
// seeds and "N passed, N failed". Returns the exit status (1 if any failed).
int runSwarm(const SwarmOptions& options, std::ostream& out);

}  // namespace qbsim::swarm
