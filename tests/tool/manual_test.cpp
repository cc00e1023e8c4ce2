// The manual (docs/simulator.md) and the interpreter agree: every command form
// the interpreter accepts is in the manual's tables as written in its usage
// line, and nothing else is; every command has its help line; every qbs
// example of the manual runs and passes.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "commands.hpp"
#include "help.hpp"
#include "sim/hostapp/host_app.hpp"
#include "runner.hpp"

namespace {

std::string manualText() {
  std::ifstream in(std::string(QUENBY_SOURCE_DIR) + "/docs/simulator.md");
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string unescaped(std::string s) {
  for (std::size_t at; (at = s.find("\\|")) != std::string::npos;) s.erase(at, 1);
  return s;
}

// The code spans of the first column of the tables whose header starts with
// `header`, unescaped.
std::vector<std::string> firstColumnForms(const std::string& manual, const std::string& header) {
  std::vector<std::string> forms;
  std::istringstream lines(manual);
  std::string line;
  bool inTable = false;
  while (std::getline(lines, line)) {
    if (line.rfind("| " + header + " |", 0) == 0) {
      inTable = true;
      continue;
    }
    if (line.rfind("|", 0) != 0) inTable = false;
    if (!inTable || line.rfind("|---", 0) == 0) continue;
    std::size_t end = 2;
    while ((end = line.find(" |", end)) != std::string::npos && line[end - 1] == '\\') ++end;
    std::string cell = line.substr(2, end - 2);
    for (std::size_t open = cell.find('`'); open != std::string::npos;
         open = cell.find('`', open)) {
      std::size_t close = cell.find('`', open + 1);
      forms.push_back(unescaped(cell.substr(open + 1, close - open - 1)));
      open = close + 1;
    }
  }
  return forms;
}

// "expect main [USER...]" → "expect main"; "wait SECONDS" → "wait".
std::string commandName(const std::string& form) {
  std::istringstream words(form);
  std::string first, second;
  words >> first >> second;
  return first == "show" || first == "expect" ? first + " " + second : first;
}

// The forms a usage line joins with " | ".
std::vector<std::string> usageForms(const std::string& usage) {
  std::vector<std::string> forms;
  std::size_t from = 0, at;
  while ((at = usage.find(" | ", from)) != std::string::npos) {
    forms.push_back(usage.substr(from, at - from));
    from = at + 3;
  }
  forms.push_back(usage.substr(from));
  return forms;
}

TEST(Manual, ListsEveryCommandFormOfTheInterpreterAndNoOther) {
  std::string manual = manualText();
  ASSERT_FALSE(manual.empty());
  std::set<std::string> documented;
  for (const char* header : {"command"})
    for (const std::string& form : firstColumnForms(manual, header)) documented.insert(form);
  ASSERT_GT(documented.size(), 60u);
  std::set<std::string> accepted;
  for (const auto& [name, spec] : qbsim::commandTable())
    for (const std::string& form : usageForms(spec.usage)) {
      accepted.insert(form);
      EXPECT_EQ(commandName(form), name) << "the usage of '" << name << "' names another command";
    }
  for (const std::string& form : accepted)
    EXPECT_TRUE(documented.count(form)) << "not in the manual: `" << form << "`";
  for (const std::string& form : documented)
    EXPECT_TRUE(accepted.count(form)) << "in the manual but not accepted: `" << form << "`";
}

TEST(Manual, ListsEveryHostVariantAndEachCommandHasItsHelpLine) {
  std::set<std::string> documented;
  for (const std::string& cell : firstColumnForms(manualText(), "variant")) documented.insert(cell);
  EXPECT_EQ(documented, hostapp::knownHostVariants());
  for (const auto& [name, spec] : qbsim::commandTable()) {
    EXPECT_NE(qbsim::commandSummary(name), nullptr) << name;
    std::optional<std::string> help = qbsim::commandHelp(name);
    ASSERT_TRUE(help) << name;
    EXPECT_NE(help->find(spec.usage), std::string::npos) << *help;
  }
  EXPECT_FALSE(qbsim::commandHelp("frobnicate"));
  EXPECT_EQ(qbsim::commandSummary("show frobnicate"), nullptr);
}

TEST(Manual, EveryScenarioExampleRunsAsWritten) {
  std::istringstream lines(manualText());
  std::string line, block;
  int examples = 0, lineNo = 0, startLine = 0;
  bool inBlock = false;
  while (std::getline(lines, line)) {
    ++lineNo;
    if (!inBlock && line == "```qbs") {
      inBlock = true, block.clear(), startLine = lineNo;
    } else if (inBlock && line == "```") {
      inBlock = false;
      ++examples;
      std::ostringstream out;
      qbsim::Session session({}, out);
      std::istringstream script(block);
      EXPECT_EQ(qbsim::runScript(session, script, "example", out), qbsim::kPassed)
          << "the example at line " << startLine << ":\n"
          << block << out.str();
    } else if (inBlock) {
      block += line + "\n";
    }
  }
  EXPECT_FALSE(inBlock);
  EXPECT_GE(examples, 5);
}

TEST(Help, NamesTheClosestCommandAndEveryForm) {
  EXPECT_EQ(qbsim::closestCommand("lanch"), "launch");
  EXPECT_EQ(qbsim::closestCommand("frend"), "friend");
  EXPECT_EQ(qbsim::closestCommand("show", "lockscren"), "show lockscreen");
  EXPECT_EQ(qbsim::closestCommand("expect", "no-sond"), "expect no-sound");
  std::optional<std::string> expectHelp = qbsim::commandHelp("expect");
  ASSERT_TRUE(expectHelp);
  EXPECT_NE(expectHelp->find("expect no-ringing FROM"), std::string::npos);
  EXPECT_EQ(expectHelp->find("show main"), std::string::npos);
  std::string general = qbsim::generalHelp();
  for (const auto& [name, spec] : qbsim::commandTable())
    EXPECT_NE(general.find(spec.usage), std::string::npos) << name;
}

}  // namespace
