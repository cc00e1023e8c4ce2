// Time and the app's life: clock, launch, quit, wait, background, foreground.
#include "commands.hpp"

namespace qbsim {

void addLifecycleCommands(CommandTable& t) {
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
