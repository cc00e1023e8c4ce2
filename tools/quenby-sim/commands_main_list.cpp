// The main chat list: session, message, open main, scroll main, show main,
// expect main, and the app switcher's picture of it (show snapshot, expect
// snapshot).
#include "commands.hpp"
#include "sim/hostapp/about_page.hpp"

namespace qbsim {
namespace {

const char* kOpenUsage =
    "open main|contacts|moments|about|forward | open chat USER | open search TEXT";

// A suspended app learns of it when it resumes.
void moveToTop(Session& s, const std::string& username) {
  s.host().model.bringSessionToTop(username);
  if (s.appAwake()) s.process()->runGuarded([&] { s.host().sessionsChanged(); });
}

std::string joined(const std::vector<std::string>& names) {
  if (names.empty()) return "(empty list)";
  std::string out;
  for (const std::string& n : names) out += (out.empty() ? "" : " ") + n;
  return out;
}

}  // namespace

void addMainListCommands(CommandTable& t) {
  t["session"] = {"session USER", [](Session& s, const Command& c) {
                    requireWords(c, 2, 2, "session USER");
                    moveToTop(s, c.words[1]);
                  }};
  t["message"] = {"message FROM [TEXT]", [](Session& s, const Command& c) {
                    requireWords(c, 2, 3, "message FROM [TEXT]");
                    std::string text = c.words.size() == 3 ? c.words[2] : "[消息]";
                    s.host().model.lastMessages[c.words[1]] = text;
                    moveToTop(s, c.words[1]);
                    // Then the host announces it, the way its state allows;
                    // an app that cannot run gets it as a remote notification.
                    if (s.appAwake())
                      s.process()->runGuarded([&] { s.host().deliverMessage(c.words[1], text); });
                    else
                      s.remoteMessage(c.words[1], text);
                  }};
  t["open"] = {"open main|contacts", [](Session& s, const Command& c) {
                 requireWords(c, 2, 3, kOpenUsage);
                 sim::Process& p = s.requireForeground("open");
                 requireNothingOver(s, "open");
                 const std::string& what = c.words[1];
                 if (what == "about" && c.words.size() == 2) {
                   rt::Id page = nullptr;
                   p.runGuarded([&] { page = hostapp::openAbout(s.host()); });
                   if (p.crashed()) s.settle();  // reports the crash
                   if (!page) throw ScriptError{"open: this host build has no About page"};
                   return;
                 }
                 if (what == "chat") {
                   if (c.words.size() != 3) throw ScriptError{"usage: open chat USER"};
                   p.runGuarded([&] { s.host().openChat(c.words[2]); });
                   return;
                 }
                 long tab = what == "main" ? 0 : what == "contacts" ? 1 : -1;
                 if (tab < 0 || c.words.size() != 2)
                   throw ScriptError{"open: no screen '" + what + "' (usage: " + kOpenUsage + ")"};
                 p.runGuarded([&] {
                   s.host().selectTab(tab);
                   s.host().popToRoot();
                 });
               }};
  t["scroll"] = {"scroll main", [](Session& s, const Command& c) {
                   requireWords(c, 2, 2, "scroll main");
                   if (c.words[1] != "main")
                     throw ScriptError{"scroll: no list '" + c.words[1] + "' (usage: scroll main)"};
                   sim::Process& p = s.requireForeground("scroll");
                   if (std::string top = topScreenName(s); top != "main") {
                     requireNothingOver(s, "scroll");
                     throw ScriptError{"scroll: the main list is not on screen (" + top + " is)"};
                   }
                   bool scrolled = false;
                   p.runGuarded([&] { scrolled = s.host().scrollMainList(); });
                   if (!scrolled) throw ScriptError{"scroll: the main list has not been shown yet"};
                 }};
  t["show main"] = {"show main", [](Session& s, const Command& c) {
                      requireWords(c, 2, 2, "show main");
                      s.requireProcess("show main");
                      std::vector<std::string> rows = s.host().mainListShown();
                      if (rows.empty()) s.out() << "(no chats)\n";
                      for (const std::string& r : rows) s.out() << r << "\n";
                    }};
  t["show snapshot"] = {"show snapshot", [](Session& s, const Command& c) {
                          requireWords(c, 2, 2, "show snapshot");
                          const hostapp::HostApp::Snapshot& shot = s.host().lastSnapshot();
                          if (!shot.taken) {
                            s.out() << "(no snapshot: the app has not entered the background)\n";
                            return;
                          }
                          s.out() << "screen " << shot.screen << "\n";
                          for (const std::string& r : shot.rows) s.out() << r << "\n";
                        }};
  t["expect snapshot"] = {
      "expect snapshot [USER...]", [](Session& s, const Command& c) {
        const hostapp::HostApp::Snapshot& shot = s.host().lastSnapshot();
        if (!shot.taken)
          throw ScriptError{"expect snapshot: the app has not entered the background yet"};
        std::vector<std::string> want(c.words.begin() + 2, c.words.end());
        if (shot.mainRows != want)
          throw ExpectFailure{joined(shot.mainRows) + " (screen " + shot.screen + ")"};
      }};
  t["expect main"] = {"expect main [USER...]", [](Session& s, const Command& c) {
                        s.requireProcess("expect main");
                        std::vector<std::string> want(c.words.begin() + 2, c.words.end());
                        std::vector<std::string> got = s.host().mainListShown();
                        if (got != want) throw ExpectFailure{joined(got)};
                      }};
}

}  // namespace qbsim
