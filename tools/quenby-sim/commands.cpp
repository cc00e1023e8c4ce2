#include "commands.hpp"

#include <algorithm>
#include <cstdlib>

#include "help.hpp"

namespace qbsim {

const CommandTable& commandTable() {
  static const CommandTable table = [] {
    CommandTable t;
    addLifecycleCommands(t);
    addLogCommands(t);
    addFileCommands(t);
    addStateCommands(t);
    addVisibilityCommands(t);
    addHostCommands(t);
    addMainListCommands(t);
    addTriggerCommands(t);
    addNotifyCommands(t);
    addOutsideCommands(t);
    addPanelCommands(t);
    addSurfaceCommands(t);
    addPictureCommands(t);
    addScreenCommands(t);
    addHelpCommand(t);
    return t;
  }();
  return table;
}

void execute(Session& session, const Command& command) {
  const CommandTable& table = commandTable();
  const std::string& first = command.words.at(0);
  std::string name = first;
  if ((first == "show" || first == "expect") && command.words.size() >= 2)
    name = first + " " + command.words[1];
  auto it = table.find(name);
  if (it == table.end()) {
    if (first == "show" || first == "expect") {
      if (command.words.size() < 2) throw ScriptError{first + ": what to " + first + " is missing"};
      throw ScriptError{"unknown " + first + " '" + command.words[1] + "' (did you mean '" +
                        closestCommand(first, command.words[1]) + "'?)"};
    }
    throw ScriptError{"unknown command '" + first + "' (did you mean '" + closestCommand(first) +
                      "'?)"};
  }
  it->second.run(session, command);
  session.settle();
  if (first == "show") pictureAfterShow(session, command.words[1]);
}

void addHelpCommand(CommandTable& t) {
  t["help"] = {"help [COMMAND]", [](Session& s, const Command& c) {
                 if (c.words.size() == 1) {
                   s.out() << generalHelp();
                   return;
                 }
                 std::string topic;
                 for (std::size_t i = 1; i < c.words.size(); ++i)
                   topic += (i > 1 ? " " : "") + c.words[i];
                 std::optional<std::string> text = commandHelp(topic);
                 if (!text)
                   throw ScriptError{
                       "help: no command '" + topic + "' (did you mean '" +
                       closestCommand(c.words[1], c.words.size() > 2 ? c.words[2] : "") + "'?)"};
                 s.out() << *text;
               }};
}

std::vector<std::string> splitWords(const std::string& line) {
  std::vector<std::string> words;
  std::string current;
  bool inWord = false, quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (quoted) {
      if (c == '"')
        quoted = false;
      else
        current += c;
      continue;
    }
    if (c == '#') break;
    if (c == '"') {
      quoted = true;
      inWord = true;
    } else if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      if (inWord) words.push_back(current);
      current.clear();
      inWord = false;
    } else {
      current += c;
      inWord = true;
    }
  }
  if (quoted) throw ScriptError{"missing closing quote"};
  if (inWord) words.push_back(current);
  return words;
}

void requireWords(const Command& c, std::size_t min, std::size_t max, const std::string& usage) {
  if (c.words.size() < min || c.words.size() > max) throw ScriptError{"usage: " + usage};
}

double durationArg(const Command& c, std::size_t index, const std::string& usage) {
  const std::string& w = c.words.at(index);
  // Seconds as a person writes them (`30`, `0.5`, `.5`): no sign, exponent or hex.
  bool decimal = w.find_first_not_of("0123456789.") == std::string::npos &&
                 std::count(w.begin(), w.end(), '.') <= 1 &&
                 w.find_first_of("0123456789") != std::string::npos;
  char* end = nullptr;
  double d = decimal ? std::strtod(w.c_str(), &end) : -1;
  if (!decimal || *end || !(d >= 0) || d > 1e7)
    throw ScriptError{"bad duration '" + w + "' (usage: " + usage + ")"};
  return d;
}

void clockArg(const Command& c, std::size_t index, const std::string& usage, int& hour,
              int& minute) {
  const std::string& w = c.words.at(index);
  auto digits = [](const std::string& s) {
    return !s.empty() && s.size() <= 2 && s.find_first_not_of("0123456789") == std::string::npos;
  };
  auto colon = w.find(':');
  if (colon == std::string::npos || !digits(w.substr(0, colon)) || w.size() - colon - 1 != 2 ||
      !digits(w.substr(colon + 1)))
    throw ScriptError{"bad time '" + w + "' (usage: " + usage + ")"};
  hour = std::atoi(w.substr(0, colon).c_str());
  minute = std::atoi(w.substr(colon + 1).c_str());
  if (hour > 23 || minute > 59) throw ScriptError{"bad time '" + w + "' (usage: " + usage + ")"};
}

}  // namespace qbsim
