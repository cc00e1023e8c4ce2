// What `quenby-sim help`, `--help` and the REPL's `help` print, and the
// nearest command to a mistyped one.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace qbsim {

// The command line's usage, then every scenario command with its usage line.
std::string generalHelp();
// The usage and meaning of one command ("wait", "show", "expect main"); none
// for a name the interpreter does not know.
std::optional<std::string> commandHelp(const std::string& topic);
// One sentence per command name of the table; a name without one is a gap
// the tests catch.
const std::string* commandSummary(const std::string& name);
// The known command closest to `word` by edit distance ("lanch" → "launch");
// for show and expect, the closest of their second words.
std::string closestCommand(const std::string& first, const std::string& second = "");
// The word of `words` closest to `word` by edit distance.
std::string closestWord(const std::string& word, const std::vector<std::string>& words);

}  // namespace qbsim
