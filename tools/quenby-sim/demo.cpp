// The built-in demo: a narrated run through everything the simulator can show
// so far. Each step is a short story line and the commands that act it out.
#include <sstream>
#include <string>
#include <vector>

#include "commands.hpp"
#include "runner.hpp"

namespace qbsim {
namespace {

struct Step {
  std::string story;
  std::vector<std::string> commands;
};

const std::vector<Step>& demoSteps() {
  static const std::vector<Step> steps = {
      {"A simulated phone at 08:00, with the host app's address book and recent chats. "
       "Time only moves when the script says so.",
       {"clock 08:00", "friend alice nick=Alice", "friend bob nick=Bob remark=老板",
        "friend carol nick=Carol", "room team@chatroom title=Team", "session team@chatroom",
        "session carol", "session bob", "session alice"}},
      {"Before the app starts, the user has marked a friend and a group chat as secret (密友). "
       "The settings file in the app's container now holds them.",
       {"secret bob", "secret team@chatroom", "expect file secrets [bob team@chatroom]"}},
      {"The host app starts cold with the library loaded. Every start is hidden: the very first "
       "chat list "
       "the host draws already leaves the secret chats out.",
       {"launch", "expect hidden", "show main", "show state"}},
      {"Bob writes. His chat would jump to the top of the list, but it stays out of sight; Carol's "
       "does not.",
       {"message bob \"are you free?\"", "session carol", "show main"}},
      {"As the app settles it re-applies the hidden state, and leaving and returning changes "
       "nothing shown.",
       {"wait 2", "background", "wait 30", "foreground", "wait 1", "expect main carol alice"}},
      {"The user shakes the phone: the library asks for the password. A wrong one reveals nothing.",
       {"shake", "expect screen alert", "expect log \"[QB] show auth from shake\"", "type 1234",
        "press 确定", "wait 1", "expect hidden"}},
      {"Shake again and give the right password: the secret chats come back in their places.",
       {"shake", "type 7351", "press 确定", "wait 1", "expect revealed", "show main"}},
      {"A shake while revealed hides them at once, without a question.",
       {"wait 2", "shake", "expect hidden", "wait 1", "show main"}},
      {"A long press on a chat's title bar reveals too (after the password); leaving the app hides "
       "again.",
       {"open chat alice", "longpress", "type 7351", "press 确定", "wait 2.5", "expect revealed",
        "background", "expect hidden", "foreground", "open main"}},
      {"The app switcher keeps a picture of the screen taken as the app leaves. Reveal on the chat "
       "list and "
       "leave: the lists are hidden before that picture is taken, so it never shows Bob.",
       {"wait 1", "shake", "type 7351", "press 确定", "wait 3",
        "expect main carol bob alice team@chatroom", "background", "show snapshot",
        "expect snapshot carol alice", "foreground", "wait 1"}},
      {"Hidden means hidden everywhere, not only in the chat list. Bob and Carol post to Moments; "
       "Bob is not in the contacts list, not found by a search, not in Moments, and not offered "
       "when forwarding.",
       {"moment carol \"morning run\"", "moment bob \"new office\"", "open contacts",
        "show contacts", "open search b", "show search", "open moments", "show moments",
        "open forward", "show forward", "expect contacts alice carol", "expect moments carol",
        "open main"}},
      {"After the password the contacts list reloads with Bob in it, and every other screen shows "
       "him "
       "the next time it opens. Leaving the app hides him everywhere again.",
       {"shake", "type 7351", "press 确定", "wait 3", "open contacts",
        "expect contacts alice carol bob", "open moments", "expect moments bob carol", "background",
        "foreground", "wait 1", "open moments", "expect moments carol", "open main"}},
      {"Messages from secrets should only vibrate while hidden; the change is saved at once.",
       {"setting secretNotifyMode 1", "expect file secretNotifyMode 1",
        "expect file backgroundNotify true"}},
      {"Bob writes while the app is open: his banner shows and the phone vibrates, but nothing "
       "sounds. "
       "Carol's message rings as anyone's does.",
       {"message bob \"dinner?\"", "expect banner bob", "expect no-sound bob",
        "expect vibration bob", "message carol \"hi!\"", "expect sound carol"}},
      {"In the background Bob calls by video. The call is reported to CallKit, as a push must be, "
       "and ended at once "
       "and again a moment later: the phone never rings. Half a minute later his missed call "
       "leaves no trace either.",
       {"background", "call video bob", "expect no-ringing bob",
        "expect log \"[QB] block PK CallKit UI from bob\"", "wait 31", "expect no-banner bob",
        "foreground", "show notices"}},
      {"A schedule for later: show the secrets from 08:00 to 13:00, hide them across the night.",
       {"setting dailyWindows 08:00-13:00 show 22:00-06:00 hide",
        "expect file dailyWindows [{start = 480; end = 780; mode = 0}, {start = 1320; end = 360; "
        "mode = 1}]"}},
      {"Bob is taken off the secret list; his next message brings his chat back.",
       {"unsecret bob", "message bob \"hello?\"", "show main"}},
      {"The app is ended and started again: the settings survive, and the remaining secret is "
       "hidden again.",
       {"quit", "launch", "expect hidden", "expect main bob carol alice", "show config"}},
      {"The panel has no visible way in: five quick taps on the version label of the About page, "
       "then the "
       "password. While it is open the secrets are shown; every row saves at once.",
       {"open about", "wait 1", "tap version", "tap version", "tap version", "tap version",
        "tap version", "expect screen alert", "type 7351", "press 确定", "wait 1",
        "expect screen panel", "show panel"}},
      {"Closing it with 完成 hides the secrets again (manual mode).",
       {"panel done", "wait 1", "expect hidden"}},
      {"Open it again and leave the app with the panel up: it closes itself and hides the "
       "secrets before the app switcher's picture is taken. Back in the app, the About page is "
       "there, and no panel.",
       {"wait 2", "tap version", "tap version", "tap version", "tap version", "tap version",
        "type 7351", "press 确定", "wait 1", "expect screen panel", "background",
        "show snapshot", "expect hidden", "foreground", "wait 1", "expect screen about"}},
      {"Outside the app, the phone keeps its own records that anyone holding it can read: the "
       "share sheet suggests the people the app donated messages with, a home-screen search "
       "finds its chats. The secret group is in neither, whatever is sent there.",
       {"send team@chatroom \"meeting at ten\"", "send alice \"lunch?\"", "show suggestions",
        "expect suggestions alice bob carol", "expect spotlight Team", "expect spotlight Alice alice"}},
      {"Back to notify mode 0. Carol writes while the app is in the background: her "
       "notification stays on the lock screen. Made secret, she is removed from it at once, and "
       "from the share sheet and search.",
       {"setting secretNotifyMode 0", "background", "message carol \"are you up?\"",
        "show lockscreen", "secret carol", "expect lockscreen", "expect suggestions alice bob",
        "expect spotlight Carol", "foreground"}},
      {"The whole log, in virtual time:", {"show log"}},
  };
  return steps;
}

}  // namespace

int runDemo(const SimOptions& options, std::ostream& out) {
  Session session(options, out);
  out << "quenby-sim demo — the host app on a simulated device, in virtual time\n";
  int step = 0;
  for (const Step& s : demoSteps()) {
    out << "\n" << ++step << ". " << s.story << "\n";
    for (const std::string& line : s.commands) {
      out << "   > " << line << "\n";
      std::istringstream in(line);
      int status = runScript(session, in, "demo", out);
      if (status != kPassed) return status;
    }
  }
  out << "\nThe demo ran to the end.\n";
  return kPassed;
}

}  // namespace qbsim
