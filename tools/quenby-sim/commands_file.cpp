// The settings file on disk: expect file KEY VALUE. The expected value is read
// in the type the file holds: true/false for a boolean, a number for a number,
// [a b] for an array of strings (a set for "secrets"), text for a string.
// The file is read as it lies on the disk, past the device's data
// protection: the check is the tester's look at the disk, not the app's.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "base/value.hpp"
#include "commands.hpp"
#include "sim/codec/plist_codec.hpp"

namespace qbsim {
namespace {

const char* kUsage = "expect file KEY VALUE";

std::vector<std::string> arrayWords(const std::string& text) {
  std::vector<std::string> out;
  std::string inner = text.substr(1, text.size() - 2);
  for (const std::string& w : splitWords(inner)) out.push_back(w);
  return out;
}

bool numberMatches(const base::Value& v, const std::string& text) {
  char* end = nullptr;
  double d = std::strtod(text.c_str(), &end);
  if (text.empty() || *end) return false;
  if (const std::int64_t* i = v.asInteger()) return double(*i) == d;
  if (const double* r = v.asReal()) return *r == d;
  return false;
}

bool matches(const std::string& key, const base::Value& v, const std::string& text) {
  if (const bool* b = v.asBool()) return (text == "true" && *b) || (text == "false" && !*b);
  if (v.isInteger() || v.isReal()) return numberMatches(v, text);
  if (const std::string* s = v.asString()) return *s == text;
  if (const base::Array* a = v.asArray()) {
    if (text.size() < 2 || text.front() != '[' || text.back() != ']') return false;
    std::vector<std::string> got;
    for (const base::Value& e : *a) {
      if (!e.isString()) return base::describe(v) == text;  // e.g. the window dictionaries
      got.push_back(*e.asString());
    }
    std::vector<std::string> want = arrayWords(text);
    if (key == "secrets") {
      std::sort(want.begin(), want.end());
      want.erase(std::unique(want.begin(), want.end()), want.end());
      std::sort(got.begin(), got.end());
      got.erase(std::unique(got.begin(), got.end()), got.end());
    }
    return want == got;
  }
  return base::describe(v) == text;
}

}  // namespace

void addFileCommands(CommandTable& t) {
  t["expect file"] = {
      kUsage, [](Session& s, const Command& c) {
        if (c.words.size() < 4) throw ScriptError{std::string("usage: ") + kUsage};
        std::string text = c.words[3];
        for (std::size_t i = 4; i < c.words.size(); ++i) text += " " + c.words[i];
        if (c.words.size() > 4 && (text.front() != '[' || text.back() != ']'))
          throw ScriptError{std::string("usage: ") + kUsage + " (write a list as [a b])"};
        std::ifstream file(s.settingsPath(), std::ios::binary);
        if (!file) throw ExpectFailure{"no settings file"};
        std::ostringstream bytes;
        bytes << file.rdbuf();
        std::optional<base::Value> root = sim::decodePlist(bytes.str());
        if (!root || !root->isDictionary())
          throw ExpectFailure{"a settings file that is not a dictionary"};
        const base::Value* v = root->find(c.words[2]);
        if (!v) throw ExpectFailure{"no key " + c.words[2]};
        if (!matches(c.words[2], *v, text)) throw ExpectFailure{base::describe(*v)};
      }};
}

}  // namespace qbsim
