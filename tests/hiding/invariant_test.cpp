// Randomized runs of user and host events, each checked after every step:
// while hidden, once the main list has been reloaded, no secret is on it.
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
  }
  static constexpr const char* kUsers[] = {"a", "b", "c", "d", "e", "f"};

  // One step chosen by the seeded source; returns what it did.
  std::string step(std::mt19937_64& rng) {
    QBConfig& c = QBConfig::shared();
    std::string who = kUsers[rng() % 6];
    switch (rng() % 9) {
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
    std::vector<std::string> steps;
    for (int i = 0; i < 150; ++i) {
      steps.push_back(step(rng));
      process->runDue();
      ASSERT_FALSE(process->crashed()) << "seed " << seed << ": " << process->crashReason();
      if (auto breach = invariant.check(process->appState() == sim::AppState::Active)) {
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
