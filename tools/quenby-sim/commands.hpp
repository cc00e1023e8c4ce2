// The scenario language's command table. Each subsystem's commands live in a
// file of their own and are added to the table by one function.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "session.hpp"

namespace qbsim {

struct Command {
  std::vector<std::string> words;  // words[0] is the command name
  std::string text;                // the line as written, without comment
};

using Handler = std::function<void(Session&, const Command&)>;

struct CommandSpec {
  std::string usage;  // shown in errors: "wait SECONDS"
  Handler run;
};

// Keyed by name; "show" and "expect" take their second word as part of the
// name ("expect log").
using CommandTable = std::map<std::string, CommandSpec>;

const CommandTable& commandTable();
// Runs one command on the session, then settles it. Throws ScriptError or
// ExpectFailure.
void execute(Session& session, const Command& command);

// Splits a line into words: blanks separate, double quotes group, `#` outside
// quotes starts a comment. A missing closing quote is a ScriptError.
std::vector<std::string> splitWords(const std::string& line);

// Argument readers that throw ScriptError naming the command's usage.
double durationArg(const Command& c, std::size_t index, const std::string& usage);
void clockArg(const Command& c, std::size_t index, const std::string& usage, int& hour,
              int& minute);
void requireWords(const Command& c, std::size_t min, std::size_t max, const std::string& usage);

void addLifecycleCommands(CommandTable& table);
void addLogCommands(CommandTable& table);
void addFileCommands(CommandTable& table);
void addStateCommands(CommandTable& table);
void addVisibilityCommands(CommandTable& table);
void addHostCommands(CommandTable& table);
void addMainListCommands(CommandTable& table);
void addTriggerCommands(CommandTable& table);
// Wraps `open`, `expect screen` and `host`: add after the commands it extends.
void addSurfaceCommands(CommandTable& table);
void addPanelCommands(CommandTable& table);
void addNotifyCommands(CommandTable& table);
void addOutsideCommands(CommandTable& table);
void addPictureCommands(CommandTable& table);
void addHelpCommand(CommandTable& table);
void addScreenCommands(CommandTable& table);
// The name of the screen on top, as `expect screen` and `show screen` say it.
std::string topScreenName(Session& session);
// For a command that touches the host's own screens: a dialog, the Face ID
// prompt, the control panel or its contact picker over them takes every touch.
void requireNothingOver(Session& session, const std::string& command);
// After `show NAME`: the picture of the screen, when the session keeps a story.
void pictureAfterShow(Session& session, const std::string& shown);

}  // namespace qbsim
