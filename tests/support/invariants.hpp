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
