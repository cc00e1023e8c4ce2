#include "swarm_settings.hpp"

#include <algorithm>

namespace qbsim::swarm {

bool clash(const Window& a, const Window& b) {
  auto in = [](const Window& x, long m) {
    if (x.start == x.end) return false;
    return x.start < x.end ? x.start <= m && m < x.end : m >= x.start || m < x.end;
  };
  for (long m = 0; m < 1440; ++m)
    if (in(a, m) && in(b, m)) return true;
  return false;
}

bool acceptable(const std::vector<Window>& w) {
  if (w.empty() || w.size() > 3) return false;
  for (std::size_t i = 0; i < w.size(); ++i) {
    if (w[i].start == w[i].end) return false;
    for (std::size_t j = 0; j < i; ++j)
      if (clash(w[i], w[j])) return false;
  }
  return true;
}

std::vector<Window> byStart(std::vector<Window> w) {
  std::stable_sort(w.begin(), w.end(),
                   [](const Window& a, const Window& b) { return a.start < b.start; });
  return w;
}

bool learnSetting(Settings& s, const std::string& key, const std::string& value,
                  const std::vector<Window>& windows) {
  if (key == "password" && value.size() < 4) return false;
  if (key == "visibilityControl")
    s.manual = value == "0";
  else if (key == "secretNotifyMode")
    s.notifyMode = std::stol(value);
  else if (key == "voipVoiceNotify")
    s.voice = value == "true";
  else if (key == "voipVideoNotify")
    s.video = value == "true";
  else if (key == "password")
    s.password = value;
  else if (key == "dailyWindows")
    s.windows = windows, s.windowsKnown = true;
  else if (key == "revealAuthMode" || key == "panelAuthMode")
    s.modes[key] = std::stol(value);
  else
    s.switches[key] = value == "true";
  return true;
}

bool learnSwitch(Settings& s, const std::string& key, bool on, const std::string& showed) {
  if (showed == (on ? "on" : "off")) return false;
  return learnSetting(s, key, on ? "true" : "false");
}

}  // namespace qbsim::swarm
