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

// Runs one script on a session. Stops at the first failure or script error,
// printing "FILE:LINE: …". Returns the file's status.
int runScript(Session& session, std::istream& in, const std::string& fileName, std::ostream& err);
// `quenby-sim run FILE…`: each file on a new device, a line per file, then the
// summary "N passed, N failed". Returns the worst status.
int runFiles(const std::vector<std::string>& files, const SimOptions& options, std::ostream& out);
// `quenby-sim repl`: commands from `in`, a prompt when `interactive`; errors
// are reported and the session goes on. Returns the worst status seen.
int runRepl(std::istream& in, bool interactive, const SimOptions& options, std::ostream& out);
// `quenby-sim demo`.
int runDemo(const SimOptions& options, std::ostream& out);

}  // namespace qbsim
