// The built-in demo: a narrated run through everything the simulator can show
// so far. Each step is a short story line and the commands that act it out.
#include <sstream>
#include <string>
#include <vector>

#include "commands.hpp"
#include "runner.hpp"

namespace qbsim {
namespace {

struct Step {
  std::string story;
  std::vector<std::string> commands;
};

const std::vector<Step>& demoSteps() {
  static const std::vector<Step> steps = {
      {"A simulated phone. Its clock reads 08:00; time only moves when the script says so.", {"clock 08:00"}},
      {"The host app starts cold, with the library loaded, and comes to the foreground.", {"launch"}},
      {"Half a minute passes in virtual time: nothing sleeps, the queue just runs what falls due.",
       {"wait 30"}},
      {"The user leaves the app and comes back: the platform posts its application and scene "
       "notifications in order.",
       {"background", "wait 5", "foreground"}},
      {"The app is ended; the container on disk survives, and the next launch is a cold start.",
       {"quit", "launch"}},
      {"Everything the library wrote to the log so far:", {"show log"}},
  };
  return steps;
}

}  // namespace

int runDemo(const SimOptions& options, std::ostream& out) {
  Session session(options, out);
  out << "quenby-sim demo — the host app on a simulated device, in virtual time\n";
  int step = 0;
  for (const Step& s : demoSteps()) {
    out << "\n" << ++step << ". " << s.story << "\n";
    for (const std::string& line : s.commands) {
      out << "   > " << line << "\n";
      std::istringstream in(line);
      int status = runScript(session, in, "demo", out);
      if (status != kPassed) return status;
    }
  }
  out << "\nThe demo ran to the end.\n";
  return kPassed;
}

}  // namespace qbsim
