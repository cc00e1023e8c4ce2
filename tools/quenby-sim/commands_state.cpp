// The secret list, settings and visibility: secret, unsecret, setting,
// show config, show state.
#include <cstdlib>

#include "base/format.hpp"
#include "base/utf8.hpp"
#include "base/value.hpp"
#include "commands.hpp"
#include "core/config.hpp"
#include "core/daily_window.hpp"
#include "hiding/session_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "triggers/schedule.hpp"

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

// `running`: the app is up, so the panel's follow-up (applying the schedule) runs too.
void applySetting(QBConfig& c, const Command& cmd, bool running) {
  const std::string& key = cmd.words[1];
  const std::string& value = cmd.words[2];
  auto needBool = [&] {
    bool b;
    if (!boolWord(value, b))
      throw ScriptError{"setting " + key + ": expected true or false, got '" + value + "'"};
    return b;
  };
  auto needMode = [&](long max) {
    long n;
    if (!integerWord(value, n) || n < 0 || n > max)
      throw ScriptError{"setting " + key + ": expected 0 to " + std::to_string(max) + ", got '" +
                        value + "'"};
    return n;
  };
  if (key == "password") {
    // The panel keeps only passwords of at least 4 characters, silently.
    if (base::utf16Length(value) >= 4) c.setPassword(value);
  } else if (key == "shakeToggle") {
    c.setShakeToggleEnabled(needBool());
  } else if (key == "shakeHide") {
    c.setShakeHideEnabled(needBool());
  } else if (key == "shakeShow") {
    c.setShakeShowEnabled(needBool());
  } else if (key == "showNeedsAuth") {
    c.setShowNeedsAuth(needBool());
  } else if (key == "longPressUnlock") {
    c.setLongPressUnlockEnabled(needBool());
  } else if (key == "passwordFallback") {
    c.setPasswordFallbackEnabled(needBool());
  } else if (key == "voipVoiceNotify") {
    c.setVoipVoiceNotifyEnabled(needBool());
  } else if (key == "voipVideoNotify") {
    c.setVoipVideoNotifyEnabled(needBool());
  } else if (key == "backgroundNotify") {
    c.setBackgroundNotifyEnabled(needBool());
  } else if (key == "panelAuthMode" || key == "authMode") {
    c.setPanelAuthMode(needMode(1));
  } else if (key == "revealAuthMode") {
    c.setRevealAuthMode(needMode(1));
  } else if (key == "secretNotifyMode") {
    long mode = needMode(2);
    c.setSecretNotifyMode(mode);
    c.setBackgroundNotifyEnabled(mode != 0);  // the panel's notify rows set both
  } else if (key == "visibilityControl") {
    c.setVisibilityControlMode(needMode(1));
    c.save();
    // The panel applies the schedule on the change (and again when it closes).
    if (running && c.usesScheduleVisibility()) triggers::QBSchedule::applyNow();
    return;
  } else if (key == "dailyWindows") {
    std::string message;
    if (!c.setDailyWindows(windowsWords(cmd.words, 2), &message))
      throw ScriptError{"setting dailyWindows: " + windowsError(message)};
    if (running) triggers::QBSchedule::applyNow();
    return;
  } else {
    throw ScriptError{"setting: unknown key '" + key + "'"};
  }
  c.save();
}

std::string yesNo(bool b) { return b ? "YES" : "NO"; }

}  // namespace

void addStateCommands(CommandTable& t) {
  t["secret"] = {"secret USER", [](Session& s, const Command& c) {
                   requireWords(c, 2, 2, "secret USER");
                   s.withLibrary([&] {
                     QBConfig::shared().addSecretUser(c.words[1]);
                     panel::QBPanelController::secretListChanged();
                     hiding::QBSessionHooks::softReloadMainFrame();
                   });
                 }};
  t["unsecret"] = {"unsecret USER", [](Session& s, const Command& c) {
                     requireWords(c, 2, 2, "unsecret USER");
                     s.withLibrary([&] {
                       QBConfig::shared().removeSecretUser(c.words[1]);
                       panel::QBPanelController::secretListChanged();
                       hiding::QBSessionHooks::softReloadMainFrame();
                     });
                   }};
  t["setting"] = {"setting KEY VALUE", [](Session& s, const Command& c) {
                    if (c.words.size() < 3 || (c.words.size() > 3 && c.words[1] != "dailyWindows"))
                      throw ScriptError{"usage: setting KEY VALUE"};
                    // Parse before touching anything, so a bad value changes nothing.
                    if (c.words[1] == "dailyWindows") windowsWords(c.words, 2);
                    std::optional<ScriptError> error;
                    bool running = s.process() != nullptr;
                    s.withLibrary([&] {
                      try {
                        applySetting(QBConfig::shared(), c, running);
                      } catch (const ScriptError& e) {
                        error = e;
                      }
                    });
                    if (error) throw *error;
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
        s.requireProcess("show state");
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
