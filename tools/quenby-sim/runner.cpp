#include "runner.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <stdlib.h>

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

}  // namespace

int runCommandLine(Session& session, const std::string& line, std::string& message) {
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
      if (f.message.rfind("app crashed", 0) == 0 || f.message.rfind("runtime violation", 0) == 0)
        message = command.text + ": " + f.message;
      return kFailed;
    }
  } catch (const ScriptError& e) {
    message = e.message;
    return kScriptError;
  }
  return kPassed;
}

namespace {

// A byte-order mark, as some editors write at the start of a file.
void skipByteOrderMark(std::string& line) {
  if (line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
}

// A folder stands for the .qbs files in it, in name order.
std::vector<std::string> expandFolders(const std::vector<std::string>& args,
                                       std::vector<std::string>& emptyFolders) {
  std::vector<std::string> files;
  for (const std::string& arg : args) {
    std::error_code ec;
    if (!std::filesystem::is_directory(arg, ec)) {
      files.push_back(arg);
      continue;
    }
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(arg, ec))
      if (entry.path().extension() == ".qbs" && !entry.is_directory(ec))
        found.push_back(entry.path().string());
    std::sort(found.begin(), found.end());
    if (found.empty()) emptyFolders.push_back(arg);
    files.insert(files.end(), found.begin(), found.end());
  }
  return files;
}

// NAME.container beside NAME.qbs is the app container the script starts from:
// a scratch copy of it, so the checked-in one is never changed.
class StartingContainer {
 public:
  StartingContainer(const std::string& script, SimOptions& options) {
    std::filesystem::path p(script);
    std::filesystem::path beside = p.parent_path() / (p.stem().string() + ".container");
    std::error_code ec;
    if (!options.container.empty() || !std::filesystem::is_directory(beside, ec)) return;
    std::string pattern =
        (std::filesystem::temp_directory_path() / "quenby-container-XXXXXX").string();
    if (!mkdtemp(pattern.data())) return;
    scratch_ = pattern;
    std::filesystem::copy(beside, scratch_, std::filesystem::copy_options::recursive, ec);
    options.container = scratch_;
  }
  ~StartingContainer() {
    std::error_code ec;
    if (!scratch_.empty()) std::filesystem::remove_all(scratch_, ec);
  }
  StartingContainer(const StartingContainer&) = delete;
  StartingContainer& operator=(const StartingContainer&) = delete;

 private:
  std::string scratch_;
};

}  // namespace

int runScript(Session& session, std::istream& in, const std::string& fileName, std::ostream& err) {
  std::string line;
  int lineNo = 0;
  while (std::getline(in, line)) {
    if (++lineNo == 1) skipByteOrderMark(line);
    std::string message;
    int status = runCommandLine(session, line, message);
    if (status != kPassed) {
      err << fileName << ":" << lineNo << ": " << message << "\n";
      return status;
    }
  }
  return kPassed;
}

int runFiles(const std::vector<std::string>& args, const SimOptions& options, std::ostream& out) {
  int worst = kPassed, passed = 0, failed = 0;
  std::vector<std::string> emptyFolders;
  std::vector<std::string> files = expandFolders(args, emptyFolders);
  for (const std::string& folder : emptyFolders) {
    out << folder << ": no .qbs files in the folder\n";
    ++failed;
    worst = kScriptError;
  }
  for (const std::string& file : files) {
    std::ifstream in(file);
    int status;
    if (!in) {
      out << file << ": cannot open the file\n";
      status = kScriptError;
    } else {
      SimOptions own = options;
      StartingContainer start(file, own);
      Session session(own, out);
      status = runScript(session, in, file, out);
    }
    out << (status == kPassed ? "PASS " : "FAIL ") << file << "\n";
    (status == kPassed ? passed : failed)++;
    worst = std::max(worst, status);
  }
  out << passed << " passed, " << failed << " failed\n";
  return worst;
}

}  // namespace qbsim
