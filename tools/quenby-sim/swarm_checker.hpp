// The swarm's checker: a model of what the user should see, kept only from the
// steps the driver took and the settings it wrote — never from the library's
// own state — and the seven promises judged against it after every step.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sim/device/notices.hpp"
#include "swarm_settings.hpp"

namespace qbsim::swarm {

// What a person could see after a step, gathered by the world from the host.
struct Observation {
  bool running = false;
  bool asleep = false;  // the app is suspended or not running: SpringBoard alone presents
  bool active = false;
  double now = 0;
  long minuteOfDay = 0;
  std::string screen;
  std::vector<std::string> mainRows;
  long mainReloads = 0;
  std::vector<std::string> contactsRows;
  long contactsReloads = 0;
  std::vector<std::string> search, moments, forward;
  std::vector<sim::Announcement> announcements;   // the ones this step opened
  std::vector<double> announcedAt;                // when each came, in device seconds
  std::optional<std::string> file;                // the settings file's bytes
  std::map<std::string, std::string> besideFile;  // the folder's other items: name → bytes
  std::optional<std::string> crash;               // the app crashed or broke a type rule
  // The app switcher's picture, when this step left the app and the picture
  // was of a list (the main or contacts list): the rows it showed.
  struct Picture {
    std::string screen;
    std::vector<std::string> rows;
  };
  std::optional<Picture> snapshot;
  // What the system keeps outside the app, readable without opening it.
  struct Delivered {
    std::string identifier, from;
  };
  std::vector<Delivered> lockscreen;     // Notification Center, newest first
  std::vector<std::string> suggestions;  // the chats the share sheet suggests
  std::vector<std::string> indexed;      // the chats the app's searchable items open
  std::vector<std::string> keptLog;      // this step's log lines, as a phone's log keeps them
};

struct Breach {
  int invariant = 0;
  std::string what;
};

class Checker {
 public:
  // `exempt`: the surfaces the faults feed; `gone`: those the host build lacks outright.
  Checker(Settings initial, std::optional<std::string> initialFile, bool savedAlready,
          unsigned exempt, unsigned gone = 0);

  // --- What the driver did.
  void launched(double now);
  void quit();
  // `panelOnScreen`: the panel's sheet was up, under whatever it showed.
  void background(double now, bool somethingHeldOnScreen, bool panelOnScreen = false);
  void foreground(double now);
  void credential(double now);  // a right password confirmed, or a passed biometric check
  void saved(const Settings& now, double at);
  void panelClosed();  // 完成, or the sheet dragged away
  enum Screen { Search, Moments, Forward, kScreens };
  void opened(Screen screen, const std::vector<std::string>& dataThen);

  const Settings& settings() const { return settings_; }
  // Judges a step; the model's view of the state is updated first.
  std::optional<Breach> check(const Observation& o);
  bool hiddenForSure(const Observation& o) const;
  // What SpringBoard's guard sees while the app sleeps: hidden in manual
  // mode (the app is not in front), by the windows in schedule mode.
  bool hiddenAsleep(const Observation& o) const;

 private:
  struct Key {
    bool hidden = false;
    std::set<std::string> secrets;
    bool active = false;
    bool operator==(const Key&) const = default;
  };
  bool scheduleVisible(long minute) const;
  std::optional<Breach> judgeScreens(const Observation& o, const Key& k);
  std::optional<Breach> judgeDrawn(const Observation& o);
  std::optional<Breach> judgeSnapshot(const Observation& o);
  std::optional<Breach> judgeKeptLog(const Observation& o) const;
  std::optional<Breach> judgeAnnouncements(const Observation& o, bool hiddenNow,
                                           bool settles = true);
  std::optional<Breach> judgeFile(const Observation& o);
  std::optional<Breach> judgeKeptAside(const Observation& o) const;
  std::optional<Breach> judgeLockScreen(const Observation& o, bool hidden);
  std::optional<Breach> judgeLockScreenAsleep(const Observation& o, bool hidden);
  std::optional<Breach> judgeOutside(const Observation& o);
  void unsure(double now) { credited_ = true, lastUnsureAt_ = now; }

  Settings settings_;
  std::optional<std::string> initialFile_;
  bool damaged_ = false;  // the file at start is no dictionary: the first launch keeps it aside
  bool launchedOnce_ = false;
  bool saved_ = false;
  unsigned exempt_ = 0, gone_ = 0;

  // The manual-mode model: hidden for sure from a cold start, an auto-lock on
  // leaving or 完成, until a credential (or a change of mode) makes it unsure.
  bool running_ = false;
  bool credited_ = false;
  bool credentialSinceLaunch_ = false;
  int hiddenBy_ = 1;  // which promise a breach breaks: 1 (never revealed) or 3 (hidden on return)
  double lastBackgroundAt_ = -1e9;
  double lastCredentialAt_ = -1e9;
  double lastUnsureAt_ = -1e9;  // schedule mode: a change or a screen that freezes it
  double lastScheduleShowAt_ = -1e9;
  double modeSince_ = 0;

  // Hidden in mode 0: since when. Choosing mode 0 hides nothing, so what
  // Notification Center held then may stay until the secrets next hide.
  bool quiet_ = false;
  double quietSince_ = 0;
  bool modeZeroChosen_ = false;
  // Made secret while the app was not running (only a settings file edited
  // outside it can): the library cleans for them when it next starts.
  std::set<std::string> secretWhileAway_;
  std::set<std::string> keptWhenChosen_;
  // While the app sleeps nothing sweeps Notification Center: what it held
  // when the app fell asleep, when a setting changed meanwhile, or got while
  // the secrets showed, stays until the app runs again.
  bool asleep_ = false;
  std::set<std::string> keptWhileAsleep_;
  std::vector<std::string> lastLockscreen_;

  Key last_;
  long mainAtChange_ = 0, contactsAtChange_ = 0;
  double changedAt_ = -1e9;
  struct Loaded {
    Key at;
    bool valid = false;
    std::set<std::string> secretsInData, othersInData;
  } loaded_[kScreens];
};

}  // namespace qbsim::swarm
