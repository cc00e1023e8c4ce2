// The secret list, settings and visibility: secret, unsecret, setting,
// show config, show state.
#include <cstdlib>

#include "base/format.hpp"
#include "base/value.hpp"
#include "commands.hpp"
#include "core/config.hpp"
#include "core/daily_window.hpp"
#include "hiding/session_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "panel/panel_rows.hpp"
#include "panel/panel_settings.hpp"

namespace qbsim {
namespace {

using core::QBConfig;

bool boolWord(const std::string& w, bool& out) {
  if (w == "true" || w == "yes" || w == "on" || w == "1") return out = true, true;
  if (w == "false" || w == "no" || w == "off" || w == "0") return out = false, true;
  return false;
}

bool integerWord(const std::string& w, long& out) {
  char* end = nullptr;
  out = std::strtol(w.c_str(), &end, 10);
  return !w.empty() && !*end;
}

// "HH:MM-HH:MM show|hide ..." → the window list the panel's editor would build.
base::Value windowsWords(const std::vector<std::string>& words, std::size_t from) {
  base::Array list;
  for (std::size_t i = from; i < words.size(); i += 2) {
    const std::string& range = words[i];
    auto dash = range.find('-');
    int h1, m1, h2, m2;
    char tail;
    if (dash == std::string::npos || i + 1 >= words.size() ||
        std::sscanf(range.c_str(), "%2d:%2d-%2d:%2d%c", &h1, &m1, &h2, &m2, &tail) != 4 || h1 < 0 ||
        h1 > 23 || h2 < 0 || h2 > 23 || m1 < 0 || m1 > 59 || m2 < 0 || m2 > 59 ||
        (words[i + 1] != "show" && words[i + 1] != "hide"))
      throw ScriptError{"setting dailyWindows: write windows as HH:MM-HH:MM show|hide ..."};
    list.push_back(
        QBConfig::QBWindow(h1 * 60 + m1, h2 * 60 + m2, words[i + 1] == "hide" ? 1 : 0).toValue());
  }
  return base::Value(std::move(list));
}

// The panel's messages are Chinese; a script's reader gets English first.
std::string windowsError(const std::string& chinese) {
  struct Known {
    std::string chinese;
    std::string english;
  } known[] = {
      {core::kMsgKeepOne, "keep at least one window"},
      {base::format(core::kMsgAtMost, long(core::kMaxDailyWindows)),
       "at most " + std::to_string(core::kMaxDailyWindows) + " windows"},
      {core::kMsgBadFormat, "a window is not written as start, end and mode"},
      {core::kMsgSameEnds, "a window starts and ends at the same time"},
      {core::kMsgPickMode, "a window's mode is neither show nor hide"},
      {core::kMsgOverlap, "two windows overlap"},
      {core::kMsgNoSuchWindow, "no such window"},
  };
  for (const Known& k : known)
    if (k.chinese == chinese) return k.english + " (the panel says \"" + chinese + "\")";
  return "the panel refuses: \"" + chinese + "\"";
}

// The words after `setting KEY` as the value the panel's row would give.
base::Value settingValue(const Command& cmd, const std::string& key) {
  const std::string& word = cmd.words[2];
  switch (panel::settingKind(key)) {
    case panel::SettingKind::Switch: {
      bool b;
      if (!boolWord(word, b))
        throw ScriptError{"setting " + key + ": expected true or false, got '" + word + "'"};
      return base::Value(b);
    }
    case panel::SettingKind::Choice: {
      long n, max = panel::maxChoice(key);
      if (!integerWord(word, n) || n < 0 || n > max)
        throw ScriptError{"setting " + key + ": expected 0 to " + std::to_string(max) + ", got '" +
                          word + "'"};
      return base::Value(n);
    }
    case panel::SettingKind::Text:
      return base::Value(word);
    case panel::SettingKind::Windows:
      return windowsWords(cmd.words, 2);
    case panel::SettingKind::Unknown:
      break;
  }
  throw ScriptError{"setting: unknown key '" + key + "'"};
}

std::string yesNo(bool b) { return b ? "YES" : "NO"; }

}  // namespace

void addStateCommands(CommandTable& t) {
  t["secret"] = {"secret USER", [](Session& s, const Command& c) {
                   requireWords(c, 2, 2, "secret USER");
                   s.withLibrary([&] {
                     QBConfig::shared().addSecretUser(c.words[1]);
                     panel::QBPanelController::secretListChanged();
                     hiding::QBSessionHooks::softReloadMainFrameForce(true);
                   });
                 }};
  t["unsecret"] = {"unsecret USER", [](Session& s, const Command& c) {
                     requireWords(c, 2, 2, "unsecret USER");
                     s.withLibrary([&] {
                       QBConfig::shared().removeSecretUser(c.words[1]);
                       panel::QBPanelController::secretListChanged();
                       hiding::QBSessionHooks::softReloadMainFrameForce(true);
                     });
                   }};
  t["setting"] = {
      "setting KEY VALUE", [](Session& s, const Command& c) {
        if (c.words.size() < 3 || (c.words.size() > 3 && c.words[1] != "dailyWindows"))
          throw ScriptError{"usage: setting KEY VALUE"};
        // The file's older name for the panel's authentication mode.
        std::string key = c.words[1] == "authMode" ? "panelAuthMode" : c.words[1];
        // Parse before touching anything, so a bad value changes nothing.
        base::Value value = settingValue(c, key);
        panel::Scope scope = s.process() ? panel::Scope::App : panel::Scope::FileOnly;
        std::string message;
        bool refused = false;
        s.withLibrary([&] { refused = !panel::changeSetting(key, value, scope, &message); });
        // A short password is dropped without a word, as the panel drops it.
        if (refused && key == "dailyWindows")
          throw ScriptError{"setting dailyWindows: " + windowsError(message)};
      }};
  t["show config"] = {"show config", [](Session& s, const Command& c) {
                        requireWords(c, 2, 2, "show config");
                        base::Value d;
                        s.withLibrary([&] { d = QBConfig::shared().settingsDictionary(); });
                        for (const auto& [k, v] : *d.asDictionary())
                          s.out() << k << " = " << base::describe(v) << "\n";
                      }};
  t["show state"] = {
      "show state", [](Session& s, const Command& c) {
        requireWords(c, 2, 2, "show state");
        sim::Process* p = s.process();
        s.out() << "app: " << s.runState();
        if (p && !p->suspended()) s.out() << " (" << sim::appStateName(p->appState()) << ")";
        s.out() << "\n";
        if (!p) return;
        QBConfig& q = QBConfig::shared();
        s.out() << "secrets: "
                << (q.shouldHideSecrets() ? "hidden"
                    : q.unlocked()        ? "revealed"
                                          : "hidden (none to hide)")
                << "\nunlocked: " << yesNo(q.unlocked()) << "\nsecret count: " << q.secretCount()
                << "\nvisibility: " << (q.usesScheduleVisibility() ? "schedule" : "manual")
                << "\nsuppressAutoLock: " << yesNo(q.suppressAutoLock())
                << "\nsuppressSessionApply: " << yesNo(q.suppressSessionApply()) << "\n";
      }};
}

}  // namespace qbsim
