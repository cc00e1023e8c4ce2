#include "help.hpp"

#include <algorithm>
#include <map>

#include "commands.hpp"

namespace qbsim {
namespace {

const std::map<std::string, std::string>& summaries() {
  static const std::map<std::string, std::string> s = {
      {"help", "prints the command line's usage, or the usage and meaning of one command"},
      {"me", "the logged-in user (default wxid_me); before launch"},
      {"friend", "a friend in the host's contacts, with its nickname, remark and alias"},
      {"room", "a group chat; its username ends in @chatroom"},
      {"host", "the host build: a class or method it lacks, a method that raises, a named variant"},
      {"device",
       "the device's biometric hardware or motion sensors, its lock since a restart, or a backup "
       "and a restore from it"},
      {"install", "how the library reached the phone: jailbreak (also in SpringBoard) or sideload"},
      {"clock", "the local time of day; virtual time goes on from there"},
      {"secret", "marks a contact secret, as the panel's contact picker does"},
      {"unsecret", "makes a contact not secret, as swipe-delete in the panel does"},
      {"setting", "changes one setting as the panel does (setter, then save)"},
      {"launch", "starts the host app with the library loaded, up to its first screen"},
      {"quit", "ends the app's process; the container survives"},
      {"wait", "advances virtual time, running everything that falls due"},
      {"background", "the app leaves the foreground; suspended after a 5 s grace"},
      {"foreground", "the app returns to the foreground"},
      {"session", "a chat moves to the top of the host's list, without a notification"},
      {"send", "the user sends a message in a chat (the host donates it to the system)"},
      {"message",
       "an incoming message: the host's paths, or a remote notification while it sleeps"},
      {"call", "an incoming voice or video call, through the host's call and CallKit paths"},
      {"moment", "a new item at the top of the Moments timeline"},
      {"open", "shows a host screen: a list, the About page, a chat, a contact search"},
      {"scroll", "scrolls the main chat list to its end and back: every row is asked for once"},
      {"shake", "one shake of the device (about 0.3 s)"},
      {"longpress", "a 0.8 s press on the navigation bar of the screen shown"},
      {"tap", "a tap on the About page: its version label, its navigation bar or the page"},
      {"type", "types into the text field of the dialog on screen"},
      {"press", "presses the button with that title in the dialog on screen"},
      {"biometric", "answers the Face ID or Touch ID prompt on screen"},
      {"time", "sets the time wheel of the dialog on screen"},
      {"panel", "a row of the control panel (tap, switch, swipe-delete), or closes the panel"},
      {"picker", "the contact picker: search, pick a contact, go back"},
      {"picture", "draws the screen on top, the lock screen or the share sheet as a PNG"},
      {"show main", "the rows of the main chat list: username, then the last message"},
      {"show contacts", "the contacts list: the starred friends, the rows, the footer count"},
      {"show search", "the results of the last contact search"},
      {"show moments", "the Moments timeline, newest first"},
      {"show forward", "the forward screen's recent row and its candidates"},
      {"show panel", "the control panel, section by section, with each row's state"},
      {"show picker", "the contact picker's title and rows"},
      {"show screen", "the screen on top: its name and what it shows"},
      {"show snapshot", "the app switcher's picture taken when the app last left"},
      {"show lockscreen", "the notifications Notification Center holds, newest first"},
      {"show suggestions", "the people the share sheet suggests, most recent first"},
      {"show spotlight", "what a system search for TEXT finds among the app's items"},
      {"show log", "every log line so far, with its virtual time"},
      {"show notices", "every message and call so far and how it reached the user"},
      {"show config", "the settings as the library holds them"},
      {"show state",
       "the app's run state, the reveal state, the secret count and the visibility mode"},
      {"show leaks", "what the system made that is alive though no one owns it"},
      {"expect app", "the app is running, suspended or not running"},
      {"expect main", "the main chat list shows exactly these chats, top to bottom"},
      {"expect contacts", "the contacts list shows exactly these contacts"},
      {"expect search", "the search shows exactly these results"},
      {"expect moments", "the Moments timeline shows exactly these authors"},
      {"expect forward", "the recent-forward row shows exactly these chats"},
      {"expect hidden", "the secrets are hidden: no list a person looks at answers one"},
      {"expect revealed", "the secrets are revealed: the main and contacts lists answer them"},
      {"expect no-leaks", "nothing the system made is alive without an owner"},
      {"expect snapshot", "the app switcher's picture showed exactly these chats"},
      {"expect lockscreen", "Notification Center holds notifications from exactly these senders"},
      {"expect suggestions", "the share sheet suggests exactly these people"},
      {"expect spotlight", "a system search for TEXT finds exactly these chats and contacts"},
      {"expect screen", "the screen on top has that name"},
      {"expect alert", "a dialog with that title is on screen"},
      {"expect banner", "the latest message or call from FROM showed a banner"},
      {"expect no-banner", "the latest message or call from FROM showed no banner"},
      {"expect sound", "the latest message or call from FROM played a sound"},
      {"expect no-sound", "the latest message or call from FROM played no sound"},
      {"expect vibration", "the latest message or call from FROM vibrated"},
      {"expect no-vibration", "the latest message or call from FROM did not vibrate"},
      {"expect ringing", "the latest call from FROM is showing a call screen"},
      {"expect no-ringing", "the latest call from FROM is not showing a call screen"},
      {"expect log", "some log line so far contains TEXT"},
      {"expect no-log", "no log line so far contains TEXT"},
      {"expect row", "a panel row has that title (and state)"},
      {"expect rows", "a panel section has that many rows"},
      {"expect file", "the settings file on disk holds KEY with VALUE"},
  };
  return s;
}

std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t up = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diagonal = up;
    }
  }
  return row[b.size()];
}

}  // namespace

std::string closestWord(const std::string& word, const std::vector<std::string>& names) {
  std::string best;
  std::size_t bestDistance = SIZE_MAX;
  for (const std::string& n : names) {
    std::size_t d = editDistance(word, n);
    if (d < bestDistance) best = n, bestDistance = d;
  }
  return best;
}

namespace {

bool isPair(const std::string& first) { return first == "show" || first == "expect"; }

}  // namespace

const std::string* commandSummary(const std::string& name) {
  auto it = summaries().find(name);
  return it == summaries().end() ? nullptr : &it->second;
}

std::string closestCommand(const std::string& first, const std::string& second) {
  std::vector<std::string> names;
  for (const auto& [name, spec] : commandTable()) {
    auto blank = name.find(' ');
    if (isPair(first) && blank != std::string::npos && name.substr(0, blank) == first)
      names.push_back(name.substr(blank + 1));
    else if (!isPair(first))
      names.push_back(name.substr(0, blank));
  }
  std::string best = closestWord(isPair(first) ? second : first, names);
  return isPair(first) ? first + " " + best : best;
}

std::string generalHelp() {
  std::string out =
      "usage: quenby-sim [--container DIR] [--trace] [--pictures DIR] [demo | run FILE|DIR... | "
      "repl]\n"
      "       quenby-sim swarm [--seeds N | --seed S] [--steps K] [--trace]\n"
      "       quenby-sim help [COMMAND]\n"
      "\n"
      "  demo         the narrated demo (the default)\n"
      "  run          scenario files, each on a new device; a folder runs its .qbs files\n"
      "  repl         commands typed one per line, with line editing and history\n"
      "  swarm        seeded random user days checked against a model\n"
      "  help         this text, or one command's: quenby-sim help expect main\n"
      "\n"
      "Scenario commands (the manual, docs/simulator.md, says more):\n";
  std::string previous;
  for (const auto& [name, spec] : commandTable()) {
    if (spec.usage == previous) continue;
    out += "  " + spec.usage + "\n";
    previous = spec.usage;
  }
  out += "\nExit status: 0 when every expectation held, 1 when one failed, 2 for a script error.\n";
  return out;
}

std::optional<std::string> commandHelp(const std::string& topic) {
  const CommandTable& table = commandTable();
  auto entry = [](const std::string& name, const CommandSpec& spec) {
    const std::string* summary = commandSummary(name);
    return "  " + spec.usage + "\n      " + (summary ? *summary : name) + "\n";
  };
  if (auto it = table.find(topic); it != table.end()) return entry(it->first, it->second);
  if (!isPair(topic)) return std::nullopt;
  std::string out;
  for (const auto& [name, spec] : table)
    if (name.rfind(topic + " ", 0) == 0) out += entry(name, spec);
  return out;
}

}  // namespace qbsim
