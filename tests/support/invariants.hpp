// Invariant checks that live apart from the simulated host: they look at the
// host's screens and the library's state after every step of a run, and say
// what broke.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/config.hpp"
#include "hostapp/host_app.hpp"
#include "hostapp/surfaces.hpp"
#include "rt/kvc.hpp"
#include "sim/uikit/uikit.hpp"

namespace qbtest {

// While the secrets are hidden, no secret chat is on the main-list screen
// once the list has been reloaded since the state last changed. Only a screen
// the user can see counts: in the background nothing is checked, and coming
// back to the foreground counts as a change (the list is re-applied then).
class NoSecretOnMainListWhileHidden {
 public:
  explicit NoSecretOnMainListWhileHidden(hostapp::HostApp& host) : host_(host) {}

  // Call after every step; returns a description of the breach, if any.
  std::optional<std::string> check(bool appActive) {
    core::QBConfig& c = core::QBConfig::shared();
    bool hidden = c.shouldHideSecrets();
    std::set<std::string> secrets;
    for (const auto& s : c.secretSnapshot()) secrets.insert(s);
    long reloads = tableReloads();
    if (hidden != lastHidden_ || secrets != lastSecrets_ || appActive != lastActive_ || !appActive) {
      lastHidden_ = hidden;
      lastSecrets_ = secrets;
      lastActive_ = appActive;
      reloadsAtChange_ = reloads;
      return std::nullopt;
    }
    if (!hidden || reloads <= reloadsAtChange_) return std::nullopt;
    for (const std::string& row : host_.mainListShown())
      if (secrets.count(row)) return "secret " + row + " is on the main list while hidden";
    return std::nullopt;
  }

 private:
  long tableReloads() const {
    rt::Id frame = host_.mainFrame();
    rt::Id table = frame ? rt::probeKey(frame, "m_tableView") : nullptr;
    return table ? sim::viewState(table)->reloads : 0;
  }

  hostapp::HostApp& host_;
  bool lastHidden_ = false;
  bool lastActive_ = true;
  std::set<std::string> lastSecrets_;
  long reloadsAtChange_ = 0;
};

}  // namespace qbtest

namespace qbtest {

// The same promise for the other screens: while hidden, no secret on the
// contacts list, the search results, Moments or the recent-forward row once
// that screen has loaded since the state last changed; while revealed, every
// secret the host had for that screen when it loaded is on it. The driver
// says when it opened search, Moments or the forward picker; the contacts
// list counts as loaded when its table has reloaded.
class SecretsFollowStateOnOtherScreens {
 public:
  enum Screen { Search, Moments, Forward, kScreens };

  explicit SecretsFollowStateOnOtherScreens(hostapp::HostApp& host) : host_(host) {}

  // Call right after opening a screen; `searchText` for the search screen.
  void opened(Screen screen, const std::string& searchText = "") {
    Loaded& l = loaded_[screen];
    l.at = current(true);
    l.secretsInData.clear();
    const hostapp::HostModel& m = host_.model;
    std::vector<std::string> data;
    if (screen == Moments)
      for (std::size_t i = 0; i < m.moments.size() && i < 500; ++i) data.push_back(m.moments[i].username);
    if (screen == Forward) data = m.recentChats;
    if (screen == Search)
      for (const auto& f : m.friends)
        if (f.username.find(searchText) != std::string::npos) data.push_back(f.username);
    for (const std::string& u : data)
      if (l.at.secrets.count(u)) l.secretsInData.insert(u);
  }

  std::optional<std::string> check(bool appActive) {
    Key now = current(appActive);
    long reloads = contactsReloads();
    if (!(now == last_) || !appActive) {
      last_ = now;
      reloadsAtChange_ = reloads;
      return std::nullopt;
    }
    bool revealed = !now.hidden && core::QBConfig::shared().unlocked();
    if (reloads > reloadsAtChange_) {
      std::set<std::string> secretFriends;
      for (const auto& f : host_.model.friends)
        if (now.secrets.count(f.username)) secretFriends.insert(f.username);
      if (auto b = judge("contacts list", hostapp::contactsShown(host_), now, revealed, secretFriends)) return b;
    }
    const char* names[] = {"search results", "Moments", "recent-forward row"};
    for (int s = 0; s < kScreens; ++s) {
      const Loaded& l = loaded_[s];
      if (!l.at.active || !(l.at == now)) continue;
      std::vector<std::string> shown = s == Search    ? hostapp::searchShown()
                                       : s == Moments ? hostapp::momentsShown()
                                                      : hostapp::forwardRowShown();
      if (auto b = judge(names[s], shown, now, revealed, l.secretsInData)) return b;
    }
    return std::nullopt;
  }

 private:
  struct Key {
    bool hidden = false;
    std::set<std::string> secrets;
    bool active = false;
    bool operator==(const Key&) const = default;
  };
  struct Loaded {
    Key at;
    std::set<std::string> secretsInData;
  };

  static Key current(bool active) {
    core::QBConfig& c = core::QBConfig::shared();
    Key k;
    k.hidden = c.shouldHideSecrets();
    for (const auto& s : c.secretSnapshot()) k.secrets.insert(s);
    k.active = active;
    return k;
  }

  static std::optional<std::string> judge(const char* where, const std::vector<std::string>& shown, const Key& now,
                                          bool revealed, const std::set<std::string>& expectedSecrets) {
    std::set<std::string> on(shown.begin(), shown.end());
    if (now.hidden) {
      for (const std::string& u : on)
        if (now.secrets.count(u)) return "secret " + u + " is on the " + where + " while hidden";
    } else if (revealed) {
      for (const std::string& u : expectedSecrets)
        if (!on.count(u)) return "secret " + u + " is missing from the " + where + " while revealed";
    }
    return std::nullopt;
  }

  long contactsReloads() const {
    rt::Id screen = host_.contactsScreen();
    rt::Id table = screen ? rt::probeKey(screen, "m_tableView") : nullptr;
    return table ? sim::viewState(table)->reloads : 0;
  }

  hostapp::HostApp& host_;
  Key last_;
  long reloadsAtChange_ = 0;
  Loaded loaded_[kScreens];
};

}  // namespace qbtest
