// Time and the app's life: install, clock, launch, quit, wait, background,
// foreground, expect app.
#include "commands.hpp"

namespace qbsim {

void addLifecycleCommands(CommandTable& t) {
  t["install"] = {"install jailbreak|sideload", [](Session& s, const Command& c) {
                    requireWords(c, 2, 2, "install jailbreak|sideload");
                    if (c.words[1] != "jailbreak" && c.words[1] != "sideload")
                      throw ScriptError{"usage: install jailbreak|sideload"};
                    s.install(c.words[1] == "jailbreak");
                  }};
  t["expect app"] = {"expect app running|suspended|not-running", [](Session& s, const Command& c) {
                       const char* usage = "expect app running|suspended|not-running";
                       requireWords(c, 3, 3, usage);
                       const std::string& want = c.words[2];
                       if (want != "running" && want != "suspended" && want != "not-running")
                         throw ScriptError{std::string("usage: ") + usage};
                       std::string got = s.runState();
                       if (got != want) throw ExpectFailure{got};
                     }};
  t["clock"] = {"clock HH:MM", [](Session& s, const Command& c) {
                  requireWords(c, 2, 2, "clock HH:MM");
                  int h = 0, m = 0;
                  clockArg(c, 1, "clock HH:MM", h, m);
                  s.device().setLocalTime(h, m);
                }};
  t["launch"] = {"launch", [](Session& s, const Command& c) {
                   requireWords(c, 1, 1, "launch");
                   s.launch();
                 }};
  t["quit"] = {"quit", [](Session& s, const Command& c) {
                 requireWords(c, 1, 1, "quit");
                 s.quit();
               }};
  t["wait"] = {"wait SECONDS", [](Session& s, const Command& c) {
                 requireWords(c, 2, 2, "wait SECONDS");
                 s.advance(durationArg(c, 1, "wait SECONDS"));
               }};
  t["background"] = {"background", [](Session& s, const Command& c) {
                       requireWords(c, 1, 1, "background");
                       if (!s.requireProcess("background").enterBackground())
                         throw ScriptError{"background: the app is already in the background"};
                     }};
  t["foreground"] = {"foreground", [](Session& s, const Command& c) {
                       requireWords(c, 1, 1, "foreground");
                       if (!s.requireProcess("foreground").enterForeground())
                         throw ScriptError{"foreground: the app is already in the foreground"};
                     }};
}

}  // namespace qbsim
