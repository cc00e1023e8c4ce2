// What the user last saved, as the swarm's model knows it, and the rules the
// model needs to say what a save holds: what a setting's words save, and which
// daily windows the panel accepts.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace qbsim::swarm {

struct Window {
  long start = 0, end = 0;  // minutes of the day
  bool hide = false;
};

struct Settings {
  std::set<std::string> secrets;
  std::string password = "7351";
  bool manual = true;
  long notifyMode = 0;
  bool voice = false, video = false;
  std::vector<Window> windows;
  bool windowsKnown = false;
  std::map<std::string, bool> switches = {{"shakeShow", true},
                                          {"shakeHide", true},
                                          {"longPressUnlock", true},
                                          {"passwordFallback", true}};
  std::map<std::string, long> modes;  // auth modes written, by file key
};

// Whether two windows share a minute; a window whose ends are equal holds none.
bool clash(const Window& a, const Window& b);
// What the panel accepts: one to three windows, each with two different ends,
// none sharing a minute with another.
bool acceptable(const std::vector<Window>& windows);
// As the panel lists them, and as the file keeps them: by start.
std::vector<Window> byStart(std::vector<Window> windows);

// What `setting KEY VALUE`, or the panel's row for KEY, saves into `s`
// (`windows` for dailyWindows); false when it saves nothing (a short password
// is dropped, the file untouched).
bool learnSetting(Settings& s, const std::string& key, const std::string& value,
                  const std::vector<Window>& windows = {});

// What flipping the panel's switch for KEY to `on` saves into `s`, given the
// state the switch showed ("on", "off", or "" when not seen): nothing when it
// showed `on` already, since the app hears of no change, whatever `s` held.
bool learnSwitch(Settings& s, const std::string& key, bool on, const std::string& showed);

}  // namespace qbsim::swarm
