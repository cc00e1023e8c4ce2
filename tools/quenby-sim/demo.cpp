// The built-in demo: a narrated run through what the simulator can show, in
// chapters. Each step is a short story, the commands that act it out, what
// its `show` commands print and at most one line of the log (every line
// with --trace).
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "base/utf8.hpp"
#include "commands.hpp"
#include "runner.hpp"

namespace qbsim {
namespace {

struct Step {
  std::string story;
  std::vector<std::string> commands;
  // The one log line the step shows: the first of its lines holding this.
  std::string logLine;
};

struct Chapter {
  std::string title;
  std::vector<Step> steps;
};

const std::vector<Chapter>& demoChapters() {
  static const std::vector<Chapter> chapters = {
      {"A phone with secrets",
       {
           {"08:00 on a simulated phone: the host app's friends and recent chats. Bob and the "
            "group Team are marked secret (密友) before the app starts.",
            {"clock 08:00", "friend alice nick=Alice", "friend bob nick=Bob remark=老板",
             "friend carol nick=Carol", "room team@chatroom title=Team", "session team@chatroom",
             "session carol", "session bob", "session alice", "secret bob", "secret team@chatroom",
             "expect file secrets [bob team@chatroom]"},
            ""},
           {"The app starts with the library loaded. Every start is hidden: the first list the "
            "host draws already leaves the secrets out.",
            {"launch", "expect hidden", "show main"},
            "session hooks READY"},
           {"Bob writes; his chat stays out of sight. Leaving and returning changes nothing.",
            {"message bob \"are you free?\"", "session carol", "wait 2", "background", "wait 30",
             "foreground", "wait 1", "show main"},
            ""},
       }},
      {"Shake, password, long press",
       {
           {"A shake asks for the password; a wrong one reveals nothing.",
            {"shake", "expect screen alert", "type 1234", "press 确定", "wait 1", "expect hidden"},
            "show auth from shake"},
           {"Shake again with the right one: the secret chats come back in their places.",
            {"shake", "type 7351", "press 确定", "wait 1", "expect revealed", "show main"},
            ""},
           {"A shake while revealed hides them at once, without a question.",
            {"wait 2", "shake", "wait 1", "expect hidden", "expect main carol alice"},
            ""},
           {"A long press on a chat's title bar reveals too; leaving the app hides again.",
            {"open chat alice", "longpress", "type 7351", "press 确定", "wait 2.5",
             "expect revealed", "background", "expect hidden", "foreground", "open main"},
            "show auth from longPress"},
           {"The app switcher's picture is taken as the app leaves, after the lists are hidden: "
            "it never shows Bob.",
            {"wait 1", "shake", "type 7351", "press 确定", "wait 3",
             "expect main carol bob alice team@chatroom", "background", "show snapshot",
             "foreground", "wait 1"},
            ""},
       }},
      {"Hidden everywhere",
       {
           {"Bob is not in the contacts list, a search, Moments or the forward row.",
            {"moment carol \"morning run\"", "moment bob \"new office\"", "open contacts",
             "show contacts", "open search b", "expect search", "open moments",
             "expect moments carol", "open forward", "expect forward alice carol", "open main"},
            ""},
           {"After the password every screen shows him the next time it opens; leaving hides "
            "him everywhere again.",
            {"shake", "type 7351", "press 确定", "wait 3", "open contacts",
             "expect contacts alice carol bob", "background", "foreground", "wait 1",
             "open moments", "expect moments carol", "open main"},
            "reloadContacts"},
       }},
      {"Messages and calls",
       {
           {"Secrets should only vibrate while hidden: Bob's banner shows without a sound; "
            "Carol's rings as anyone's does.",
            {"setting secretNotifyMode 1", "message bob \"dinner?\"", "expect banner bob",
             "expect no-sound bob", "expect vibration bob", "message carol \"hi!\"",
             "expect sound carol"},
            ""},
           {"In the background Bob calls by video: CallKit hears of it and ends it, the phone "
            "never rings, and his missed call leaves no trace.",
            {"background", "call video bob", "expect no-ringing bob", "wait 31",
             "expect no-banner bob", "foreground", "show notices"},
            "block PK CallKit UI from bob"},
       }},
      {"Settings, restart and the panel",
       {
           {"A schedule is saved; Bob leaves the secret list and his next message brings him "
            "back. After a restart the remaining secret is hidden again.",
            {"setting dailyWindows 08:00-13:00 show 22:00-06:00 hide", "unsecret bob",
             "message bob \"hello?\"", "quit", "launch", "expect hidden",
             "expect main bob carol alice", "expect file secrets [team@chatroom]"},
            ""},
           {"The control panel hides behind five taps on the About page's version label, then "
            "the password (`show panel` prints it row by row).",
            {"open about", "wait 1", "tap version", "tap version", "tap version", "tap version",
             "tap version", "type 7351", "press 确定", "wait 1", "expect screen panel",
             "expect row 0 0 \"手动控制\" checked"},
            ""},
           {"完成 closes it and hides the secrets; leaving the app with it open closes it too, "
            "before the app switcher's picture. Nothing the library made outlives it.",
            {"panel done", "wait 3", "expect hidden", "tap version", "tap version", "tap version",
             "tap version", "tap version", "type 7351", "press 确定", "wait 1", "background",
             "expect hidden", "foreground", "wait 1", "expect screen about", "show leaks"},
            ""},
       }},
      {"Outside the app",
       {
           {"The share sheet and a home-screen search never name the secret group.",
            {"send team@chatroom \"meeting at ten\"", "send alice \"lunch?\"", "show suggestions",
             "expect spotlight Team", "expect spotlight Alice alice"},
            ""},
           {"Carol's notification waits on the lock screen; made secret, she leaves it at once, "
            "and the share sheet and search too.",
            {"setting secretNotifyMode 0", "background", "message carol \"are you up?\"",
             "show lockscreen", "secret carol", "expect lockscreen", "expect suggestions alice bob",
             "expect spotlight Carol", "foreground"},
            "removed 1 delivered notification"},
       }},
      {"A new phone",
       {
           {"A password of the user's own, then a backup as iOS takes it. The phone is wiped "
            "and restored from it: the app starts cold, the secrets hidden and the password "
            "kept.",
            {"setting password 2468", "device backup", "device restore", "launch", "expect hidden",
             "expect file secrets [team@chatroom carol]", "shake", "type 2468", "press 确定",
             "wait 1", "expect revealed", "shake", "wait 1", "expect hidden"},
            "show auth from shake"},
           {"Scrolling the whole chat list to the end and back asks the host for every row: "
            "none is a secret's.",
            {"scroll main", "expect hidden", "show main"},
            ""},
       }},
      {"While the app sleeps",
       {
           {"Five seconds after leaving, iOS suspends the app. A message now comes as a remote "
            "notification that SpringBoard shows by itself; the library there keeps Carol's "
            "silent and off the lock screen, while Alice's shows as always.",
            {"background", "wait 6", "expect app suspended", "message carol \"still up?\"",
             "expect no-banner carol", "message alice \"good night\"", "expect banner alice",
             "expect lockscreen alice"},
            ""},
           {"Even with the app not running at all, Carol's next message shows nothing; a call "
            "wakes the app in the background, where its own paths decide as before.",
            {"quit", "expect app not-running", "message carol \"?\"", "expect no-banner carol",
             "call voice alice", "expect app running", "expect ringing alice", "wait 31",
             "expect app suspended", "foreground", "expect hidden", "show state"},
            ""},
       }},
  };
  return chapters;
}

// What the session prints, indented under its step.
class IndentingBuffer : public std::streambuf {
 public:
  explicit IndentingBuffer(std::ostream& to) : to_(to) {}

 protected:
  int overflow(int c) override {
    if (c == traits_type::eof()) return traits_type::not_eof(c);
    if (atLineStart_ && c != '\n') to_ << "     ";
    atLineStart_ = c == '\n';
    to_.put(char(c));
    return c;
  }
  int sync() override {
    to_.flush();
    return 0;
  }

 private:
  std::ostream& to_;
  bool atLineStart_ = true;
};

// The commands of a step, a few to a line.
void printCommands(const std::vector<std::string>& commands, std::ostream& out) {
  std::string line;
  for (const std::string& c : commands) {
    if (!line.empty() && line.size() + c.size() + 3 > 96) {
      out << "   > " << line << "\n";
      line.clear();
    }
    line += (line.empty() ? "" : " · ") + c;
  }
  if (!line.empty()) out << "   > " << line << "\n";
}

}  // namespace

int runDemo(const SimOptions& options, std::ostream& out) {
  IndentingBuffer indenting(out);
  std::ostream indented(&indenting);
  Session session(options, indented);
  out << "quenby-sim demo — the host app on a simulated device, in virtual time"
      << (options.trace ? "" : " (--trace prints every command and log line)") << "\n";
  int chapterNo = 0, stepNo = 0;
  for (const Chapter& chapter : demoChapters()) {
    out << "\n" << ++chapterNo << ". " << chapter.title << "\n";
    for (const Step& s : chapter.steps) {
      out << "\n  " << chapterNo << "." << ++stepNo << " " << s.story << "\n";
      std::size_t logFrom = session.device().log().size();
      // Commands go in groups that end with a show, so its output follows them.
      std::vector<std::string> group;
      for (std::size_t i = 0; i < s.commands.size(); ++i) {
        group.push_back(s.commands[i]);
        bool last = i + 1 == s.commands.size();
        if (!last && s.commands[i].rfind("show ", 0) != 0) continue;
        if (!options.trace) printCommands(group, out);
        for (const std::string& line : group) {
          std::istringstream in(line);
          int status = runScript(session, in, "demo", indented);
          indented.flush();
          if (status != kPassed) return status;
        }
        group.clear();
      }
      if (s.logLine.empty() || options.trace) continue;
      const auto& log = session.device().log();
      std::size_t i = logFrom;
      while (i < log.size() && !base::contains(log[i].text, s.logLine)) ++i;
      if (i == log.size()) {
        out << "demo: step " << stepNo << " logged no line with \"" << s.logLine << "\"\n";
        return kFailed;
      }
      out << "   log " << formatLogTime(log[i]) << " " << log[i].text << "\n";
    }
    stepNo = 0;
  }
  out << "\nThe demo ran to the end.\n";
  return kPassed;
}

}  // namespace qbsim
