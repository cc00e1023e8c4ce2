// The swarm as tests run it: a fixed range of seeds passes (the randomized
// user days of hiding, no-way-in and notification gating, with host faults),
// and a seed is a pure function of itself: the same seed, the same transcript.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "swarm.hpp"

namespace {

using qbsim::swarm::runSeed;

TEST(Swarm, AFixedRangeOfSeedsPasses) {
  // QB_SEED=N runs just that seed, as `quenby-sim swarm --seed N` does.
  std::uint64_t first = 1, last = 40;
  if (const char* one = std::getenv("QB_SEED")) first = last = std::strtoull(one, nullptr, 10);
  std::set<std::string> faults;
  for (std::uint64_t seed = first; seed <= last; ++seed) {
    qbsim::swarm::SeedRun r = runSeed(seed, 150);
    ASSERT_TRUE(r.passed) << r.failure;
    EXPECT_EQ(r.steps, 150);
    faults.insert(r.faults.begin(), r.faults.end());
  }
  if (first != last) {
    EXPECT_GE(faults.size(), 15u) << "the seeds should switch on many different host faults";
  }
}

TEST(Swarm, TheSameSeedPrintsTheSameTranscript) {
  for (std::uint64_t seed : {3u, 17u, 4242u}) {
    qbsim::swarm::SeedRun a = runSeed(seed, 120), b = runSeed(seed, 120);
    EXPECT_EQ(a.transcript, b.transcript) << "seed " << seed;
    EXPECT_GT(a.transcript.size(), 2000u);
  }
  EXPECT_NE(runSeed(5, 60).transcript, runSeed(6, 60).transcript);
}

TEST(Swarm, TheTraceIsTheTranscriptWithTheLogInterleaved) {
  std::ostringstream live;
  qbsim::swarm::SeedRun traced = runSeed(9, 80, &live);
  qbsim::swarm::SeedRun plain = runSeed(9, 80);
  EXPECT_EQ(traced.transcript, plain.transcript);
  EXPECT_NE(live.str().find("[QB]"), std::string::npos);
  // Every transcript line is in the trace, in order.
  std::size_t at = 0;
  std::istringstream lines(plain.transcript);
  for (std::string line; std::getline(lines, line);) {
    at = live.str().find(line, at);
    ASSERT_NE(at, std::string::npos) << line;
  }
}

}  // namespace
