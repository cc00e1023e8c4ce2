// The log: show log, expect log, expect no-log.
#include "commands.hpp"

#include "base/utf8.hpp"

namespace qbsim {

void addLogCommands(CommandTable& t) {
  t["show log"] = {"show log", [](Session& s, const Command& c) {
                     requireWords(c, 2, 2, "show log");
                     const auto& log = s.device().log();
                     if (log.empty()) s.out() << "(no log lines)\n";
                     for (const auto& l : log) s.out() << formatLogTime(l) << " " << l.text << "\n";
                   }};
  t["expect log"] = {
      "expect log \"TEXT\"", [](Session& s, const Command& c) {
        requireWords(c, 3, 3, "expect log \"TEXT\"");
        const auto& log = s.device().log();
        for (const auto& l : log)
          if (base::contains(l.text, c.words[2])) return;
        throw ExpectFailure{log.empty() ? "no log lines"
                                        : "no such line among " + std::to_string(log.size()) +
                                              " (last: \"" + log.back().text + "\")"};
      }};
  t["expect no-log"] = {"expect no-log \"TEXT\"", [](Session& s, const Command& c) {
                          requireWords(c, 3, 3, "expect no-log \"TEXT\"");
                          for (const auto& l : s.device().log())
                            if (base::contains(l.text, c.words[2]))
                              throw ExpectFailure{"\"" + l.text + "\""};
                        }};
}

}  // namespace qbsim
