// The host's other screens: moment, open search|moments|forward, show and
// expect for contacts, search, moments and forward. `open` keeps its other
// forms: the earlier handler answers everything not named here.
#include "commands.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace qbsim {
namespace {

std::string joined(const std::vector<std::string>& names, const char* empty) {
  if (names.empty()) return empty;
  std::string out;
  for (const std::string& n : names) out += (out.empty() ? "" : " ") + n;
  return out;
}

// A screen the user has not opened in this run cannot be looked at.
void requireOpened(Session& s, const std::string& command, bool opened, const char* what) {
  s.requireProcess(command);
  if (!opened)
    throw ScriptError{command + ": the " + std::string(what) +
                      " screen has not been opened (open " + what + ")"};
}

struct Surface {
  const char* name;
  std::function<std::vector<std::string>(Session&, const std::string&)> rows;  // checks and reads
  const char* empty;
};

std::vector<Surface> surfaces() {
  return {
      {"contacts",
       [](Session& s, const std::string& cmd) {
         requireOpened(s, cmd, s.process() && hostapp::contactsOpened(s.host()), "contacts");
         return hostapp::contactsShown(s.host());
       },
       "(no contacts)"},
      {"search",
       [](Session& s, const std::string& cmd) {
         requireOpened(s, cmd, hostapp::searchOpened(), "search");
         return hostapp::searchShown();
       },
       "(no results)"},
      {"moments",
       [](Session& s, const std::string& cmd) {
         requireOpened(s, cmd, hostapp::momentsOpened(), "moments");
         return hostapp::momentsShown();
       },
       "(no moments)"},
      {"forward",
       [](Session& s, const std::string& cmd) {
         requireOpened(s, cmd, hostapp::forwardOpened(), "forward");
         return hostapp::forwardRowShown();
       },
       "(no recent forwards)"},
  };
}

void showExtras(Session& s, const std::string& name) {
  if (name == "contacts") {
    std::vector<std::string> starred = hostapp::contactsStarred(s.host());
    if (!starred.empty()) s.out() << "星标朋友: " << joined(starred, "") << "\n";
  }
}

void showFooter(Session& s, const std::string& name) {
  if (name == "contacts") {
    long n = hostapp::contactsFooterCount(s.host());
    if (n >= 0) s.out() << n << "位联系人\n";
  } else if (name == "forward") {
    s.out() << "candidates: " << joined(hostapp::forwardCandidatesShown(), "(none)") << "\n";
  }
}

}  // namespace

void addSurfaceCommands(CommandTable& t) {
  t["moment"] = {"moment USER [TEXT]", [](Session& s, const Command& c) {
                   requireWords(c, 2, 3, "moment USER [TEXT]");
                   s.host().model.addMoment(c.words[1], c.words.size() == 3 ? c.words[2] : "");
                 }};

  Handler open = t["open"].run;
  t["open"] = {"open main|contacts|moments|about|forward | open chat USER | open search TEXT",
               [open](Session& s, const Command& c) {
                 const std::string what = c.words.size() >= 2 ? c.words[1] : "";
                 if (what != "search" && what != "moments" && what != "forward") {
                   if (open)
                     open(s, c);
                   else
                     throw ScriptError{"open: no screen '" + what + "'"};
                   return;
                 }
                 if (what == "search" && c.words.size() != 3)
                   throw ScriptError{"usage: open search TEXT"};
                 if (what != "search" && c.words.size() != 2)
                   throw ScriptError{"usage: open " + what};
                 sim::Process& p = s.requireForeground("open");
                 requireNothingOver(s, "open");
                 p.runGuarded([&] {
                   if (what == "search")
                     hostapp::openSearch(s.host(), c.words[2]);
                   else if (what == "moments")
                     hostapp::openMoments(s.host());
                   else
                     hostapp::openForward(s.host());
                 });
               }};

  for (const Surface& surface : surfaces()) {
    std::string name = surface.name;
    auto rows = surface.rows;
    std::string empty = surface.empty;
    t["show " + name] = {"show " + name, [name, rows, empty](Session& s, const Command& c) {
                           requireWords(c, 2, 2, "show " + name);
                           std::vector<std::string> got = rows(s, "show " + name);
                           showExtras(s, name);
                           if (got.empty()) s.out() << empty << "\n";
                           for (const std::string& r : got) s.out() << r << "\n";
                           showFooter(s, name);
                         }};
    t["expect " + name] = {"expect " + name + " [USER...]",
                           [name, rows](Session& s, const Command& c) {
                             std::vector<std::string> want(c.words.begin() + 2, c.words.end());
                             std::vector<std::string> got = rows(s, "expect " + name);
                             if (got != want) throw ExpectFailure{joined(got, "(empty list)")};
                           }};
  }
}

}  // namespace qbsim
