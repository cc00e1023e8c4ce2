#include "runner.hpp"

#include <fstream>
#include <sstream>

#include "commands.hpp"

namespace qbsim {
namespace {

// The command as written: without its comment and surrounding blanks.
std::string commandText(const std::string& line) {
  bool quoted = false;
  std::size_t end = line.size();
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    if (line[i] == '#' && !quoted) {
      end = i;
      break;
    }
  }
  std::string s = line.substr(0, end);
  auto b = s.find_first_not_of(" \t\r\n");
  if (b == std::string::npos) return "";
  auto e = s.find_last_not_of(" \t\r\n");
  return s.substr(b, e - b + 1);
}

// Runs one line. Returns the status and fills `message` on failure.
int runLine(Session& session, const std::string& line, std::string& message) {
  try {
    Command command;
    command.words = splitWords(line);
    if (command.words.empty()) return kPassed;
    command.text = commandText(line);
    if (session.trace()) session.out() << "> " << command.text << "\n";
    try {
      execute(session, command);
    } catch (const ExpectFailure& f) {
      message = command.text + ": got " + f.message;
      if (f.message.rfind("app crashed", 0) == 0 ||
          f.message.rfind("runtime type mismatch", 0) == 0)
        message = command.text + ": " + f.message;
      return kFailed;
    }
  } catch (const ScriptError& e) {
    message = e.message;
    return kScriptError;
  }
  return kPassed;
}

}  // namespace

int runScript(Session& session, std::istream& in, const std::string& fileName, std::ostream& err) {
  std::string line;
  int lineNo = 0;
  while (std::getline(in, line)) {
    ++lineNo;
    std::string message;
    int status = runLine(session, line, message);
    if (status != kPassed) {
      err << fileName << ":" << lineNo << ": " << message << "\n";
      return status;
    }
  }
  return kPassed;
}

int runFiles(const std::vector<std::string>& files, const SimOptions& options, std::ostream& out) {
  int worst = kPassed, passed = 0, failed = 0;
  for (const std::string& file : files) {
    std::ifstream in(file);
    int status;
    if (!in) {
      out << file << ": cannot open the file\n";
      status = kScriptError;
    } else {
      Session session(options, out);
      status = runScript(session, in, file, out);
    }
    out << (status == kPassed ? "PASS " : "FAIL ") << file << "\n";
    (status == kPassed ? passed : failed)++;
    worst = std::max(worst, status);
  }
  out << passed << " passed, " << failed << " failed\n";
  return worst;
}

int runRepl(std::istream& in, bool interactive, const SimOptions& options, std::ostream& out) {
  Session session(options, out);
  int worst = kPassed, lineNo = 0;
  std::string line;
  while (true) {
    if (interactive) out << "qb> " << std::flush;
    if (!std::getline(in, line)) break;
    ++lineNo;
    std::string message;
    int status = runLine(session, line, message);
    if (status != kPassed) {
      out << "repl:" << lineNo << ": " << message << "\n";
      worst = std::max(worst, status);
    }
  }
  if (interactive) out << "\n";
  return worst;
}

}  // namespace qbsim
