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
      {"Before the app starts, the user has marked two contacts as secret (密友): a friend and a group chat. "
       "The settings file in the app's container now holds them.",
       {"secret alice", "secret team@chatroom", "expect file secrets [alice team@chatroom]"}},
      {"The host app starts cold with the library loaded. Every start is hidden, whatever the last run ended in.",
       {"launch", "expect hidden", "show state"}},
      {"Messages from secrets should only vibrate while hidden; the change is saved at once.",
       {"setting secretNotifyMode 1", "expect file secretNotifyMode 1", "expect file backgroundNotify true"}},
      {"A schedule for later: show the secrets from 08:00 to 13:00, hide them across the night.",
       {"setting dailyWindows 08:00-13:00 show 22:00-06:00 hide",
        "expect file dailyWindows [{start = 480; end = 780; mode = 0}, {start = 1320; end = 360; mode = 1}]"}},
      {"The user leaves the app and comes back; half a minute passes in virtual time.",
       {"background", "wait 30", "foreground"}},
      {"The app is ended and started again: the settings survive, and the secrets are hidden again.",
       {"quit", "launch", "expect hidden", "show config"}},
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
