// Running scenario files, the REPL and the demo; the exit status rules of the
// command line.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "session.hpp"

namespace qbsim {

enum ExitStatus { kPassed = 0, kFailed = 1, kScriptError = 2 };

// Runs one line (a command, a comment or nothing). Returns its status and
// fills `message` when it is not kPassed.
int runCommandLine(Session& session, const std::string& line, std::string& message);
// Runs one script on a session. Stops at the first failure or script error,
// printing "FILE:LINE: …". Returns the file's status.
int runScript(Session& session, std::istream& in, const std::string& fileName, std::ostream& err);
// `quenby-sim run FILE…`: each file on a new device, a line per file, then the
// summary "N passed, N failed". Returns the worst status.
int runFiles(const std::vector<std::string>& files, const SimOptions& options, std::ostream& out);
// `quenby-sim repl`: commands from `in`, a prompt when `interactive`; errors
// are reported and the session goes on. Returns 1 when an expectation
// failed, else 0: a typo does not fail a session.
int runRepl(std::istream& in, bool interactive, const SimOptions& options, std::ostream& out);
// The same on a terminal, through libedit: line editing, history, completion.
int runTerminalRepl(const SimOptions& options, std::ostream& out);
// What the REPL completes after the words `before`: command names, the
// second words of show and expect, screens after open, else usernames.
std::vector<std::string> completionCandidates(const std::vector<std::string>& before,
                                              Session& session);
// `quenby-sim demo`.
int runDemo(const SimOptions& options, std::ostream& out);

}  // namespace qbsim
