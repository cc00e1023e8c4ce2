// quenby-sim: the library inside the simulated host app on a simulated device.
//   quenby-sim [demo]            the narrated demo
//   quenby-sim run FILE…         scenario files, each on a new device
//   quenby-sim repl              commands from standard input
// Options: --container DIR, --trace, --pictures DIR.
#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "runner.hpp"

namespace {

int usage() {
  std::cerr << "usage: quenby-sim [--container DIR] [--trace] [--pictures DIR] [demo | run FILE... | repl]\n";
  return qbsim::kScriptError;
}

}  // namespace

int main(int argc, char** argv) {
  qbsim::SimOptions options;
  std::vector<std::string> words;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--trace") {
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
  if (mode == "repl" && words.size() == 1) return qbsim::runRepl(std::cin, isatty(0), options, std::cout);
  return usage();
}
