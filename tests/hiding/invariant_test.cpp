// Randomized runs of user and host events, each checked after every step:
// while hidden, once a screen has loaded since the state changed, no secret is
// on the main list, the contacts list, search, Moments or the recent-forward
// row; while revealed, the secrets are back on those other screens.
// A failing run prints its seed; rerun it with QB_SEED=N.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "support/host_world.hpp"
#include "support/invariants.hpp"
#include "sys/queue.hpp"

namespace {

using core::QBConfig;
using hiding::QBSessionHooks;

class HiddenMainListRun : public qbtest::HostWorld {
 protected:
  void SetUp() override {
    for (const char* u : kUsers) addFriend(u);
    host.model.sessions = {"a", "b", "c", "d", "e"};
    for (const char* u : kUsers) host.model.addMoment(u, "");
  }
  qbtest::SecretsFollowStateOnOtherScreens* screens = nullptr;
  static constexpr const char* kUsers[] = {"a", "b", "c", "d", "e", "f"};

  // One step chosen by the seeded source; returns what it did.
  std::string step(std::mt19937_64& rng) {
    QBConfig& c = QBConfig::shared();
    std::string who = kUsers[rng() % 6];
    switch (rng() % 13) {
      case 0:
      case 1:
        process->runGuarded([&] {
          host.model.bringSessionToTop(who);
          host.sessionsChanged();
        });
        return "message " + who;
      case 2:
        c.addSecretUser(who);
        QBSessionHooks::refreshFilterCache();
        QBSessionHooks::softReloadMainFrame();
        return "secret " + who;
      case 3:
        c.removeSecretUser(who);
        QBSessionHooks::refreshFilterCache();
        QBSessionHooks::softReloadMainFrame();
        return "unsecret " + who;
      case 4:  // a reveal after authentication
        c.setUnlocked(true);
        QBSessionHooks::refreshFilterCache();
        QBSessionHooks::revealSecretsNow();
        return "reveal";
      case 5:  // a hide, as the shake or long press does it
        c.setUnlocked(false);
        QBSessionHooks::refreshFilterCache();
        sys::after(0.15, [] { QBSessionHooks::softReloadMainFrameForce(true); });
        return "hide";
      case 6:
        if (process->appState() == sim::AppState::Active) process->enterBackground();
        else process->enterForeground();
        return "background/foreground";
      case 7:
        process->runGuarded([&] { host.selectTab(long(rng() % 2)); });
        return "switch tab";
      case 9:
        process->runGuarded([&] { hostapp::openSearch(host, who); });
        screens->opened(qbtest::SecretsFollowStateOnOtherScreens::Search, who);
        return "open search " + who;
      case 10:
        process->runGuarded([&] { hostapp::openMoments(host); });
        screens->opened(qbtest::SecretsFollowStateOnOtherScreens::Moments);
        return "open moments";
      case 11:
        if (rng() % 2) {
          host.model.addMoment(who, "");
          return "moment " + who;
        }
        process->runGuarded([&] { hostapp::openForward(host); });
        screens->opened(qbtest::SecretsFollowStateOnOtherScreens::Forward);
        return "open forward";
      default: {
        double t = double(rng() % 2000) / 1000.0;
        wait(t);
        return "wait " + std::to_string(t);
      }
    }
  }
};

TEST_F(HiddenMainListRun, SeededRandomRuns) {
  std::vector<std::uint64_t> seeds;
  if (const char* env = std::getenv("QB_SEED")) seeds.push_back(std::strtoull(env, nullptr, 10));
  else
    for (std::uint64_t n = 1; n <= 25; ++n) seeds.push_back(n);
  for (std::uint64_t seed : seeds) {
    std::mt19937_64 rng(seed);
    launchWithLibrary();
    qbtest::NoSecretOnMainListWhileHidden invariant(host);
    qbtest::SecretsFollowStateOnOtherScreens others(host);
    screens = &others;
    std::vector<std::string> steps;
    for (int i = 0; i < 150; ++i) {
      steps.push_back(step(rng));
      process->runDue();
      ASSERT_FALSE(process->crashed()) << "seed " << seed << ": " << process->crashReason();
      bool active = process->appState() == sim::AppState::Active;
      std::optional<std::string> breach = invariant.check(active);
      if (auto other = others.check(active); !breach) breach = other;
      if (breach) {
        std::string trail;
        for (std::size_t k = steps.size() > 8 ? steps.size() - 8 : 0; k < steps.size(); ++k) trail += "\n  " + steps[k];
        FAIL() << "seed " << seed << " (rerun with QB_SEED=" << seed << "), step " << i << ": " << *breach
               << "\nlast steps:" << trail;
      }
    }
    process.reset();
  }
}

}  // namespace
