// quenby-sim: the library inside the simulated host app on a simulated device.
//   quenby-sim [demo]            the narrated demo
//   quenby-sim run FILE|DIR…     scenario files, each on a new device
//   quenby-sim repl              commands from standard input
//   quenby-sim swarm             seeded random days checked against a model
//   quenby-sim help [COMMAND]    the usage, or one command's
// Options: --container DIR, --trace, --pictures DIR; for swarm --seeds N | --seed S, --steps K.
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "help.hpp"
#include "run_folder.hpp"
#include "runner.hpp"
#include "swarm.hpp"

namespace {

int usage() {
  std::cerr << "usage: quenby-sim [--container DIR] [--trace] [--pictures DIR] [demo | run "
               "FILE|DIR... | repl]\n"
               "       quenby-sim swarm [--seeds N | --seed S] [--steps K] [--trace]\n"
               "       quenby-sim help [COMMAND]\n";
  return qbsim::kScriptError;
}

// One line for a bad argument, exit 2 like any other script error.
int badArgument(const std::string& what) {
  std::cerr << "quenby-sim: " << what << "\n";
  return qbsim::kScriptError;
}

// A whole number of digits only: strtoull alone would take "-5" as a huge count.
std::optional<std::uint64_t> wholeNumber(const char* text) {
  if (!*text) return std::nullopt;
  for (const char* c = text; *c; ++c)
    if (*c < '0' || *c > '9') return std::nullopt;
  errno = 0;
  std::uint64_t v = std::strtoull(text, nullptr, 10);
  if (errno == ERANGE) return std::nullopt;
  return v;
}

// The container must be a folder the app can write its Documents into, or
// nothing runs: otherwise the first save would fail far from the cause.
std::optional<std::string> containerProblem(const std::string& dir) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::file_status st = fs::status(dir, ec);
  if (fs::exists(st) && !fs::is_directory(st)) return "is not a folder";
  fs::path documents = fs::path(dir) / "Documents";
  if (!fs::create_directories(documents, ec) && ec) return "cannot be made: " + ec.message();
  if (!fs::is_directory(documents, ec)) return "has a Documents that is not a folder";
  if (access(documents.c_str(), W_OK | X_OK) != 0) return "cannot be written";
  return std::nullopt;
}

int help(const std::vector<std::string>& words) {
  if (words.size() == 1) {
    std::cout << qbsim::generalHelp();
    return qbsim::kPassed;
  }
  std::string topic;
  for (std::size_t i = 1; i < words.size(); ++i) topic += (i > 1 ? " " : "") + words[i];
  if (std::optional<std::string> text = qbsim::commandHelp(topic)) {
    std::cout << *text;
    return qbsim::kPassed;
  }
  return badArgument("help: no command '" + topic + "' (did you mean '" +
                     qbsim::closestCommand(words[1], words.size() > 2 ? words[2] : "") + "'?)");
}

int run(int argc, char** argv) {
  qbsim::SimOptions options;
  qbsim::swarm::SwarmOptions swarm;
  std::vector<std::string> words;
  bool seedsGiven = false, seedGiven = false;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--seeds" || a == "--seed" || a == "--steps") {
      std::optional<std::uint64_t> n = i + 1 < argc ? wholeNumber(argv[i + 1]) : std::nullopt;
      std::uint64_t least = a == "--seed" ? 0 : 1;
      std::uint64_t most = a == "--steps" ? 1000000 : UINT64_MAX;
      if (!n || *n < least || *n > most)
        return badArgument(a + " takes a whole number from " + std::to_string(least) +
                           (a == "--steps" ? " to 1000000" : " up") + " (got '" +
                           (i + 1 < argc ? argv[i + 1] : "") + "')");
      ++i;
      if (a == "--seeds") swarm.count = *n, seedsGiven = true;
      if (a == "--seed") swarm.first = *n, swarm.count = 1, seedGiven = true;
      if (a == "--steps") swarm.steps = int(*n);
      if (seedsGiven && seedGiven) return badArgument("--seed and --seeds do not go together");
    } else if (a == "--trace") {
      options.trace = true;
    } else if (a == "--container") {
      if (++i >= argc) return badArgument("--container needs a folder");
      options.container = argv[i];
    } else if (a == "--pictures") {
      if (++i >= argc) return badArgument("--pictures needs a folder");
      options.picturesDir = argv[i];
    } else if (a.rfind("--pictures=", 0) == 0) {
      options.picturesDir = a.substr(11);
    } else if (a.rfind("--container=", 0) == 0) {
      options.container = a.substr(12);
    } else if (a == "--help" || a == "-h") {
      return help({"help"});
    } else if (a.rfind("--", 0) == 0) {
      std::cerr << "quenby-sim: unknown option " << a << "\n";
      return usage();
    } else {
      words.push_back(a);
    }
  }
  std::string mode = words.empty() ? "demo" : words[0];
  if (mode == "help") return help(words);
  if (!options.container.empty())
    if (std::optional<std::string> problem = containerProblem(options.container))
      return badArgument("--container " + options.container + ": " + *problem);
  if (mode == "demo" && words.size() <= 1) return qbsim::runDemo(options, std::cout);
  if (mode == "run") {
    if (words.size() < 2) return usage();
    return qbsim::runFiles({words.begin() + 1, words.end()}, options, std::cout);
  }
  if (mode == "swarm" && words.size() == 1) {
    swarm.trace = options.trace;
    return qbsim::swarm::runSwarm(swarm, std::cout);
  }
  if (mode == "repl" && words.size() == 1) {
    if (isatty(0) && isatty(1)) return qbsim::runTerminalRepl(options, std::cout);
    return qbsim::runRepl(std::cin, isatty(0), options, std::cout);
  }
  if (mode != "demo" && mode != "run" && mode != "swarm" && mode != "repl")
    std::cerr << "quenby-sim: unknown mode '" << mode << "' (did you mean '"
              << qbsim::closestWord(mode, {"demo", "run", "repl", "swarm", "help"}) << "'?)\n";
  return usage();
}

}  // namespace

int main(int argc, char** argv) {
  qbsim::startRunFolder();
  int status = run(argc, argv);
  std::cout << std::flush;
  qbsim::endRunFolder();
  return status;
}
