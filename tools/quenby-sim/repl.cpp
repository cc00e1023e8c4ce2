// `quenby-sim repl`: on a terminal, lines come through libedit (editing,
// history, completion of command names and usernames); from a pipe, plain
// lines. An error prints its line and the session goes on. Lines from a pipe
// end with the worst status, as a script would; at a terminal, where a typo
// is typed again, only a failed expectation counts.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <editline/readline.h>

#include <algorithm>
#include <set>

#include "commands.hpp"
#include "runner.hpp"

namespace qbsim {
namespace {

// Runs one line and reports it; returns its status.
int replLine(Session& session, const std::string& line, int lineNo, std::ostream& out) {
  std::string message;
  int status = runCommandLine(session, line, message);
  if (status != kPassed) out << "repl:" << lineNo << ": " << message << "\n";
  return status;
}

int typedAtATerminal(int status) { return status == kScriptError ? kPassed : status; }

// libedit's completion hooks are plain functions: they reach the session here.
Session* completingFor = nullptr;
std::vector<std::string> candidates;

char* nextCandidate(const char* text, int state) {
  static std::size_t index = 0;
  if (state == 0) index = 0;
  while (index < candidates.size()) {
    const std::string& c = candidates[index++];
    if (c.rfind(text, 0) == 0) return strdup(c.c_str());
  }
  return nullptr;
}

char** complete(const char* text, int start, int /*end*/) {
  rl_attempted_completion_over = 1;  // never fall back to file names
  std::vector<std::string> before;
  try {
    before = splitWords(std::string(rl_line_buffer, std::size_t(start)));
  } catch (const ScriptError&) {
    return nullptr;  // inside an open quote
  }
  candidates = completionCandidates(before, *completingFor);
  return rl_completion_matches(text, nextCandidate);
}

}  // namespace

std::vector<std::string> completionCandidates(const std::vector<std::string>& before,
                                              Session& session) {
  std::set<std::string> names;
  const CommandTable& table = commandTable();
  bool pair = before.size() == 1 && (before[0] == "show" || before[0] == "expect");
  if (before.empty() || (before.size() == 1 && before[0] == "help")) {
    for (const auto& [name, spec] : table) names.insert(name.substr(0, name.find(' ')));
  } else if (pair || (before.size() == 2 && before[0] == "help" &&
                      (before[1] == "show" || before[1] == "expect"))) {
    std::string prefix = before.back() + " ";
    for (const auto& [name, spec] : table)
      if (name.rfind(prefix, 0) == 0) names.insert(name.substr(prefix.size()));
  } else if (before.size() == 1 && before[0] == "open") {
    names = {"main", "contacts", "moments", "about", "forward", "chat", "search"};
  } else {
    const hostapp::HostModel& model = session.host().model;
    for (const auto& f : model.friends) names.insert(f.username);
    for (const auto& r : model.rooms) names.insert(r.username);
    names.insert(model.me);
  }
  return {names.begin(), names.end()};
}

int runRepl(std::istream& in, bool interactive, const SimOptions& options, std::ostream& out) {
  Session session(options, out);
  int worst = kPassed, lineNo = 0;
  std::string line;
  while (true) {
    if (interactive) out << "qb> " << std::flush;
    if (!std::getline(in, line)) break;
    if (++lineNo == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
    int status = replLine(session, line, lineNo, out);
    worst = std::max(worst, interactive ? typedAtATerminal(status) : status);
    out << std::flush;  // whoever drives the pipe sees each answer as it comes
  }
  if (interactive) out << "\n";
  return worst;
}

int runTerminalRepl(const SimOptions& options, std::ostream& out) {
  Session session(options, out);
  completingFor = &session;
  rl_attempted_completion_function = complete;
  rl_completion_append_character = ' ';
  using_history();
  int worst = kPassed, lineNo = 0;
  while (true) {
    out << std::flush;
    char* raw = readline("qb> ");
    if (!raw) break;
    std::string line = raw;
    free(raw);
    ++lineNo;
    if (line.find_first_not_of(" \t") != std::string::npos) add_history(line.c_str());
    worst = std::max(worst, typedAtATerminal(replLine(session, line, lineNo, out)));
  }
  out << "\n" << std::flush;
  completingFor = nullptr;
  return worst;
}

}  // namespace qbsim
