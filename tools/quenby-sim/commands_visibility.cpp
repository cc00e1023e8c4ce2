// expect hidden / expect revealed: the reveal state, and for hidden what the
// lists a person looks at answer about the secrets.
#include <algorithm>
#include <unordered_set>

#include "commands.hpp"
#include "core/config.hpp"
#include "secrets_seen.hpp"

namespace qbsim {
namespace {

using core::QBConfig;

// The secrets the app holds, in a stable order for messages.
std::vector<std::string> secretList() {
  std::unordered_set<std::string> set = QBConfig::shared().secretSnapshot();
  std::vector<std::string> list(set.begin(), set.end());
  std::sort(list.begin(), list.end());
  return list;
}

std::string listed(const std::vector<std::string>& places) {
  std::string out;
  for (const std::string& p : places) out += (out.empty() ? "" : ", ") + p;
  return out;
}

void expectHidden(Session& s, const Command& c) {
  requireWords(c, 2, 2, "expect hidden");
  sim::Process& p = s.requireProcess("expect hidden");
  if (QBConfig::shared().unlocked()) throw ExpectFailure{"revealed"};
  std::vector<std::string> seen;
  p.runGuarded([&] { seen = secretsShown(s.host(), secretList()); });
  s.settle();
  if (!seen.empty()) throw ExpectFailure{"hidden, but " + listed(seen)};
}

// Only the state: a reveal reaches the lists over the next moments (the host
// rebuilds its session store when the library re-applies the state), and a
// person checks "revealed" by the state the app shows.
void expectRevealed(Session& s, const Command& c) {
  requireWords(c, 2, 2, "expect revealed");
  s.requireProcess("expect revealed");
  if (!QBConfig::shared().unlocked()) throw ExpectFailure{"hidden"};
}

}  // namespace

void addVisibilityCommands(CommandTable& t) {
  t["expect hidden"] = {"expect hidden", expectHidden};
  t["expect revealed"] = {"expect revealed", expectRevealed};
}

}  // namespace qbsim
