// quenby-sim: the library inside the simulated host app on a simulated device.
//   quenby-sim [demo]            the narrated demo
//   quenby-sim run FILE…         scenario files, each on a new device
//   quenby-sim repl              commands from standard input
//   quenby-sim swarm             seeded random days checked against a model
// Options: --container DIR, --trace, --pictures DIR; for swarm --seeds N | --seed S, --steps K.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "runner.hpp"
#include "swarm.hpp"

namespace {

int usage() {
  std::cerr << "usage: quenby-sim [--container DIR] [--trace] [--pictures DIR] [demo | run FILE... "
               "| repl]\n"
               "       quenby-sim swarm [--seeds N | --seed S] [--steps K] [--trace]\n";
  return qbsim::kScriptError;
}

}  // namespace

int main(int argc, char** argv) {
  qbsim::SimOptions options;
  qbsim::swarm::SwarmOptions swarm;
  std::vector<std::string> words;
  auto number = [&](int& i, std::uint64_t& out) {
    if (++i >= argc) return false;
    char* end = nullptr;
    out = std::strtoull(argv[i], &end, 10);
    return *argv[i] && !*end;
  };
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    std::uint64_t n = 0;
    if (a == "--seeds" || a == "--seed" || a == "--steps") {
      if (!number(i, n) || (a != "--seed" && n == 0)) return usage();
      if (a == "--seeds") swarm.count = n;
      if (a == "--seed") swarm.first = n, swarm.count = 1;
      if (a == "--steps") swarm.steps = int(n);
    } else if (a == "--trace") {
      options.trace = true;
    } else if (a == "--container") {
      if (++i >= argc) return usage();
      options.container = argv[i];
    } else if (a == "--pictures") {
      if (++i >= argc) return usage();
      options.picturesDir = argv[i];
    } else if (a.rfind("--pictures=", 0) == 0) {
      options.picturesDir = a.substr(11);
    } else if (a.rfind("--container=", 0) == 0) {
      options.container = a.substr(12);
    } else if (a == "--help" || a == "-h") {
      usage();
      return 0;
    } else if (a.rfind("--", 0) == 0) {
      std::cerr << "quenby-sim: unknown option " << a << "\n";
      return usage();
    } else {
      words.push_back(a);
    }
  }
  std::string mode = words.empty() ? "demo" : words[0];
  if (mode == "demo" && words.size() <= 1) return qbsim::runDemo(options, std::cout);
  if (mode == "run") {
    if (words.size() < 2) return usage();
    return qbsim::runFiles({words.begin() + 1, words.end()}, options, std::cout);
  }
  if (mode == "swarm" && words.size() == 1) {
    swarm.trace = options.trace;
    return qbsim::swarm::runSwarm(swarm, std::cout);
  }
  if (mode == "repl" && words.size() == 1)
    return qbsim::runRepl(std::cin, isatty(0), options, std::cout);
  return usage();
}
