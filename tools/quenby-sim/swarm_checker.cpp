#include "swarm_checker.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <tuple>

#include "sim/codec/plist_codec.hpp"
#include "swarm_faults.hpp"

namespace qbsim::swarm {
namespace {

// A change takes a moment to reach the screen (a sheet closing, a reload
// after 0.15 s); only what loads after that counts.
constexpr double kSettle = 0.5;
// The schedule is applied at least this often; a screen or change that froze
// it is over after the same time.
constexpr double kScheduleSettle = 31.0;
// A check's result lands 0.45 s after 确定, and the panel it opens 0.35 s
// later: a departure before then may come back to that panel, revealed.
constexpr double kResultPending = 1.0;
// The auto-lock acts at most once per this long.
constexpr double kAutoLockSpacing = 0.85;

bool isHeldScreen(const std::string& s) {
  return s == "alert" || s == "biometric" || s == "panel" || s == "picker";
}

}  // namespace

Checker::Checker(Settings initial, std::optional<std::string> initialFile, bool savedAlready,
                 unsigned exempt, unsigned gone)
    : settings_(std::move(initial)),
      initialFile_(std::move(initialFile)),
      saved_(savedAlready),
      exempt_(exempt),
      gone_(gone) {
  if (initialFile_) {
    std::optional<base::Value> v = sim::decodePlist(*initialFile_);
    damaged_ = !v || !v->isDictionary();
  }
}

void Checker::launched(double now) {
  running_ = launchedOnce_ = true;
  secretWhileAway_.clear();
  keptWhenChosen_.clear();
  credited_ = credentialSinceLaunch_ = false;
  hiddenBy_ = 1;
  modeSince_ = std::min(modeSince_, now);
}

void Checker::quit() { running_ = false; }

void Checker::background(double now, bool somethingHeldOnScreen, bool panelOnScreen) {
  // Leaving in manual mode hides: at once when the panel is up, under
  // whatever it shows; otherwise unless a prompt holds the auto-lock back, it
  // acted a moment ago, or a check's result is still on its way.
  bool plain = !somethingHeldOnScreen && now - lastBackgroundAt_ >= kAutoLockSpacing &&
               now - lastCredentialAt_ >= kResultPending;
  if (running_ && settings_.manual && credited_ && !settings_.secrets.empty() &&
      (panelOnScreen || plain)) {
    credited_ = false;
    hiddenBy_ = 3;
    keptWhenChosen_.clear();
  }
  lastBackgroundAt_ = now;
}

void Checker::foreground(double) {}

void Checker::credential(double now) {
  credited_ = credentialSinceLaunch_ = true;
  lastCredentialAt_ = now;
}

void Checker::saved(const Settings& now, double at) {
  if (now.notifyMode == 0 && settings_.notifyMode != 0) modeZeroChosen_ = true;
  for (const auto& u : now.secrets)
    if (!settings_.secrets.count(u) && (!running_ || asleep_)) secretWhileAway_.insert(u);
  if (asleep_) keptWhileAsleep_.insert(lastLockscreen_.begin(), lastLockscreen_.end());
  if (now.manual != settings_.manual) {
    unsure(at);
    modeSince_ = at;
  }
  if (now.windows.size() != settings_.windows.size() || now.windowsKnown != settings_.windowsKnown)
    lastUnsureAt_ = at;
  for (std::size_t i = 0; i < now.windows.size() && i < settings_.windows.size(); ++i)
    if (now.windows[i].start != settings_.windows[i].start ||
        now.windows[i].end != settings_.windows[i].end ||
        now.windows[i].hide != settings_.windows[i].hide)
      lastUnsureAt_ = at;
  settings_ = now;
  saved_ = true;
}

void Checker::panelClosed() {
  if (settings_.manual) {
    credited_ = false;
    hiddenBy_ = 1;
    keptWhenChosen_.clear();
  }
}

void Checker::opened(Screen screen, const std::vector<std::string>& dataThen) {
  Loaded& l = loaded_[screen];
  l.valid = false;
  l.secretsInData.clear();
  l.othersInData.clear();
  for (const auto& u : dataThen)
    (settings_.secrets.count(u) ? l.secretsInData : l.othersInData).insert(u);
  l.at.active = false;  // completed by the next check
  l.at.hidden = true;
  l.at.secrets = {"\x01pending"};
}

bool Checker::scheduleVisible(long minute) const {
  for (const Window& w : settings_.windows) {
    bool in = w.start == w.end  ? false
              : w.start < w.end ? (w.start <= minute && minute < w.end)
                                : (minute >= w.start || minute < w.end);
    if (in) return !w.hide;
  }
  return false;
}

bool Checker::hiddenAsleep(const Observation& o) const {
  if (!launchedOnce_ || settings_.secrets.empty()) return false;
  if (settings_.manual) return true;
  return settings_.windowsKnown && !scheduleVisible(o.minuteOfDay);
}

bool Checker::hiddenForSure(const Observation& o) const {
  if (!running_ || !o.running || settings_.secrets.empty()) return false;
  if (settings_.manual) return !credited_;
  return settings_.windowsKnown && o.now - modeSince_ > kScheduleSettle &&
         o.now - lastUnsureAt_ > kScheduleSettle && o.now - lastScheduleShowAt_ > kScheduleSettle;
}

std::optional<Breach> Checker::check(const Observation& o) {
  if (o.crash) return Breach{4, "the host app broke: " + *o.crash};
  if (auto b = judgeSnapshot(o)) return b;
  if (auto b = judgeKeptLog(o)) return b;
  if (isHeldScreen(o.screen)) lastUnsureAt_ = o.now;
  if (o.screen == "panel" || o.screen == "picker") {
    // The panel keeps the secrets shown while it is open, and opens only
    // after a credential.
    if (!credentialSinceLaunch_) return Breach{1, "the panel opened without a credential"};
    credited_ = true;
  }
  if (!settings_.manual && (!settings_.windowsKnown || scheduleVisible(o.minuteOfDay)))
    lastScheduleShowAt_ = o.now;

  bool slept = asleep_ && o.asleep;  // the whole step, so SpringBoard alone presented
  if (o.asleep && !asleep_) {
    for (const auto& d : o.lockscreen) keptWhileAsleep_.insert(d.identifier);
  } else if (!o.asleep && asleep_) {
    // Awake again: what was queued while asleep runs now, and what the
    // lock screen kept is the app's to sweep, after the usual moment.
    keptWhileAsleep_.clear();
    if (running_) secretWhileAway_.clear();
    quiet_ = false;
  }
  asleep_ = o.asleep;
  lastLockscreen_.clear();
  for (const auto& d : o.lockscreen) lastLockscreen_.push_back(d.identifier);

  Key k;
  k.hidden = hiddenForSure(o);
  k.secrets = settings_.secrets;
  k.active = o.active;
  if (!(k == last_)) changedAt_ = o.now;
  last_ = k;
  bool settled = o.running && o.active && o.now - changedAt_ >= kSettle;
  for (Loaded& l : loaded_) {
    if (l.at.secrets.count("\x01pending")) {
      l.at = k;
      l.valid = settled;
    }
    if (!(l.at == k)) l.valid = false;
  }
  if (!settled) {
    mainAtChange_ = o.mainReloads;
    contactsAtChange_ = o.contactsReloads;
  } else {
    if (auto b = judgeDrawn(o)) return b;
    if (k.hidden)
      if (auto b = judgeScreens(o, k)) return b;
  }
  if (slept) {
    bool hidden = hiddenAsleep(o);
    // SpringBoard reads the gate afresh: no moment to settle.
    if (auto b = judgeAnnouncements(o, hidden, false)) return b;
    if (!hidden || settings_.notifyMode != 0)
      for (const auto& d : o.lockscreen) keptWhileAsleep_.insert(d.identifier);
    if (auto b = judgeLockScreenAsleep(o, hidden)) return b;
  } else {
    if (auto b = judgeAnnouncements(o, k.hidden)) return b;
    // Fallen asleep during the step: a sweep under way stops with the app.
    if (o.asleep) {
      if (auto b = judgeLockScreenAsleep(o, hiddenAsleep(o))) return b;
    } else if (auto b = judgeLockScreen(o, k.hidden)) {
      return b;
    }
  }
  if (auto b = judgeOutside(o)) return b;
  return judgeFile(o);
}

std::optional<Breach> Checker::judgeScreens(const Observation& o, const Key& k) {
  int onMain = settings_.manual ? hiddenBy_ : 2;
  auto find = [&](const std::vector<std::string>& rows) -> std::optional<std::string> {
    for (const auto& r : rows)
      if (k.secrets.count(r)) return r;
    return std::nullopt;
  };
  if (!(exempt_ & kMainList) && o.mainReloads > mainAtChange_)
    if (auto r = find(o.mainRows))
      return Breach{onMain, "secret " + *r + " is on the main list while hidden"};
  if (!(exempt_ & kContacts) && o.contactsReloads > contactsAtChange_)
    if (auto r = find(o.contactsRows))
      return Breach{2, "secret " + *r + " is on the contacts list while hidden"};
  const std::vector<std::string>* shown[] = {&o.search, &o.moments, &o.forward};
  const unsigned surface[] = {kSearch, kMoments, kForward};
  const char* names[] = {"search results", "Moments", "recent-forward row"};
  for (int s = 0; s < kScreens; ++s) {
    if (!loaded_[s].valid || (exempt_ & surface[s])) continue;
    if (auto r = find(*shown[s]))
      return Breach{2, "secret " + *r + " is on the " + names[s] + " while hidden"};
  }
  return std::nullopt;
}

// 8. The system log, as a phone keeps it, never names a secret: a username
// in a line is a private argument, redacted there.
std::optional<Breach> Checker::judgeKeptLog(const Observation& o) const {
  auto wordChar = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '@';
  };
  for (const std::string& line : o.keptLog)
    for (const std::string& s : settings_.secrets)
      for (std::size_t at = line.find(s); at != std::string::npos; at = line.find(s, at + 1)) {
        std::size_t end = at + s.size();
        if ((at == 0 || !wordChar(line[at - 1])) && (end == line.size() || !wordChar(line[end])))
          return Breach{8, "the system log keeps secret " + s + " in the clear: " + line};
      }
  return std::nullopt;
}

// The app switcher's picture never shows a secret, in any mode or state.
std::optional<Breach> Checker::judgeSnapshot(const Observation& o) {
  if (!o.snapshot) return std::nullopt;
  unsigned fed = o.snapshot->screen == "main" ? kMainList : kContacts;
  if (exempt_ & fed) return std::nullopt;
  for (const auto& r : o.snapshot->rows)
    if (settings_.secrets.count(r))
      return Breach{
          3, "the app switcher's picture of the " + o.snapshot->screen + " list shows secret " + r};
  return std::nullopt;
}

// Whatever the faults, a screen still draws: everyone who is not a secret is
// on it, as the host had them when it loaded.
std::optional<Breach> Checker::judgeDrawn(const Observation& o) {
  const std::vector<std::string>* shown[] = {&o.search, &o.moments, &o.forward};
  const char* names[] = {"search results", "Moments", "recent-forward row"};
  const unsigned surface[] = {kSearch, kMoments, kForward};
  for (int s = 0; s < kScreens; ++s) {
    if (!loaded_[s].valid || (gone_ & surface[s])) continue;
    std::set<std::string> on(shown[s]->begin(), shown[s]->end());
    for (const auto& u : loaded_[s].othersInData)
      if (!on.count(u)) return Breach{4, u + ", not a secret, is missing from the " + names[s]};
  }
  return std::nullopt;
}

std::optional<Breach> Checker::judgeAnnouncements(const Observation& o, bool hiddenNow,
                                                  bool settles) {
  for (std::size_t i = 0; i < o.announcements.size(); ++i) {
    const sim::Announcement& a = o.announcements[i];
    if (!settings_.secrets.count(a.from)) continue;
    // Judged by when it came: a sheet still closing, 0.3 s, was the state before.
    double at = i < o.announcedAt.size() ? o.announcedAt[i] : o.now;
    bool hidden = hiddenNow && (!settles || at - changedAt_ >= kSettle);
    std::string what = a.kind + " from " + a.from + ": banner '" + a.banner + "', sound " +
                       std::to_string(a.sound) + ", vibrations " + std::to_string(a.vibrations) +
                       ", ringing " + std::to_string(a.ringing);
    if (!a.isCall()) {
      if (!hidden || (exempt_ & kBanner)) continue;
      if (settings_.notifyMode == 0 && (!a.banner.empty() || a.sound || a.vibrations))
        return Breach{2, "notify mode 0, hidden: " + what};
      if (settings_.notifyMode == 1 && a.sound) return Breach{2, "notify mode 1, hidden: " + what};
      continue;
    }
    bool switchOn = a.kind == "video call" ? settings_.video : settings_.voice;
    if (!o.active && o.running && !switchOn && a.ringing && !(exempt_ & kRinging))
      return Breach{2, "in the background a call rang with its switch off: " + what};
  }
  return std::nullopt;
}

// 6. While hidden in mode 0 the lock screen lists nothing of a secret's: what
// came while they were shown is gone once they hide (or a contact becomes
// secret, or the app starts). Choosing mode 0 hides nothing, so what was
// there then may stay until the next hide the model knows of.
std::optional<Breach> Checker::judgeLockScreen(const Observation& o, bool hidden) {
  bool quiet = hidden && settings_.notifyMode == 0;
  if (quiet && !quiet_) quietSince_ = o.now;
  if (modeZeroChosen_)
    for (const auto& d : o.lockscreen) keptWhenChosen_.insert(d.identifier);
  modeZeroChosen_ = false;
  quiet_ = quiet;
  if (!quiet || o.now - quietSince_ < kSettle) return std::nullopt;
  for (const auto& d : o.lockscreen)
    if (settings_.secrets.count(d.from) && !keptWhenChosen_.count(d.identifier))
      return Breach{6, "hidden in notify mode 0, the lock screen still lists " + d.from};
  return std::nullopt;
}

// 6, while the app sleeps: SpringBoard drops what a hidden secret sends in
// mode 0, so nothing new of a secret's reaches the lock screen.
std::optional<Breach> Checker::judgeLockScreenAsleep(const Observation& o, bool hidden) {
  if (modeZeroChosen_)
    for (const auto& d : o.lockscreen) keptWhenChosen_.insert(d.identifier);
  modeZeroChosen_ = false;
  if (!hidden || settings_.notifyMode != 0) return std::nullopt;
  for (const auto& d : o.lockscreen)
    if (settings_.secrets.count(d.from) && !keptWhileAsleep_.count(d.identifier) &&
        !keptWhenChosen_.count(d.identifier))
      return Breach{6, "asleep, hidden in notify mode 0, the lock screen got " + d.from + "'s"};
  return std::nullopt;
}

// 7. The share sheet never suggests a secret, and a system search never finds
// one, hidden or revealed, running or not (a contact made secret while the
// app was not running, from its next start).
std::optional<Breach> Checker::judgeOutside(const Observation& o) {
  auto secret = [&](const std::string& u) {
    return settings_.secrets.count(u) && !secretWhileAway_.count(u);
  };
  if (!(exempt_ & kSuggestions))
    for (const auto& u : o.suggestions)
      if (secret(u)) return Breach{7, "the share sheet suggests secret " + u};
  for (const auto& u : o.indexed)
    if (secret(u)) return Breach{7, "a system search finds secret " + u};
  return std::nullopt;
}

}  // namespace qbsim::swarm
