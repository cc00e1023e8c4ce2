// Seeded random days of messages, calls, reveals, hides, trips to the
// background and changes of mode and switches. After every step each new
// announcement is judged against the checker's own model of the state:
// in mode 0 while hidden a secret's message shows, sounds and vibrates
// nothing; in mode 1 it never sounds; a secret's call whose switch is off
// never rings in the background. A failure prints its seed (QB_SEED=N reruns).
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <random>

#include "hiding/session_hooks.hpp"
#include "notify_world.hpp"

namespace {

struct Model {
  bool hidden = true;
  bool active = true;
  long mode = 0;
  bool voice = false, video = false;
  double lastAutoLock = -1e9;  // leaving the app hides, at most once per 0.8 s
  static bool secret(const std::string& u) { return u == "bob" || u == "team@chatroom"; }
};

std::optional<std::string> judge(const Model& m, const sim::Announcement& a) {
  if (!Model::secret(a.from)) return std::nullopt;
  if (!a.isCall()) {
    if (m.hidden && m.mode == 0 && (!a.banner.empty() || a.sound || a.vibrations))
      return "mode 0, hidden: a secret's message reached the user";
    if (m.hidden && m.mode == 1 && a.sound) return "mode 1, hidden: a secret's message made a sound";
    return std::nullopt;
  }
  bool video = a.kind == "video call";
  bool switchOff = video ? !m.video : !m.voice;
  if (!m.active && switchOff && a.ringing) return "background: a secret's call rings with its switch off";
  return std::nullopt;
}

class NotifyRandomRun : public qbtest::NotifyWorld {
 protected:
  static constexpr const char* kUsers[] = {"alice", "bob", "carol", "team@chatroom"};

  std::string step(std::mt19937_64& rng, Model& m) {
    core::QBConfig& c = config();
    std::string who = kUsers[rng() % 4];
    switch (rng() % 10) {
      case 0:
      case 1:
      case 2:
        process->runGuarded([&] { host.deliverMessage(who, "hi"); });
        return "message " + who;
      case 3: {
        bool video = rng() % 2;
        process->runGuarded([&] { host.deliverCall(who, video); });
        return std::string("call ") + (video ? "video " : "voice ") + who;
      }
      case 4:
        if (!m.active) return "no reveal in the background";
        c.setUnlocked(true);
        hiding::QBSessionHooks::refreshFilterCache();
        m.hidden = false;
        return "reveal";
      case 5:
        c.lock();
        m.hidden = true;
        return "hide";
      case 6:
        if (m.active) process->enterBackground();
        else process->enterForeground();
        m.active = !m.active;
        if (!m.active && !m.hidden && device.elapsed() - m.lastAutoLock >= 0.8) {
          m.hidden = true;
          m.lastAutoLock = device.elapsed();
        }
        return m.active ? "foreground" : "background";
      case 7:
        m.mode = long(rng() % 3);
        setMode(m.mode);
        return "mode " + std::to_string(m.mode);
      case 8:
        m.voice = rng() % 2;
        m.video = rng() % 2;
        setSwitches(m.voice, m.video);
        return "switches " + std::to_string(m.voice) + std::to_string(m.video);
      default: {
        double t = double(rng() % 40000) / 1000.0;
        wait(t);
        return "wait " + std::to_string(t);
      }
    }
  }
};

TEST_F(NotifyRandomRun, SeededRandomRuns) {
  std::vector<std::uint64_t> seeds;
  if (const char* fixed = std::getenv("QB_SEED")) seeds.push_back(std::strtoull(fixed, nullptr, 10));
  else
    for (std::uint64_t s = 1; s <= 20; ++s) seeds.push_back(s);
  for (std::uint64_t seed : seeds) {
    std::mt19937_64 rng(seed);
    device.notices().clear();
    launchWithLibrary();
    config().addSecretUser("bob");
    config().addSecretUser("team@chatroom");
    Model m;
    std::vector<std::string> steps;
    for (int i = 0; i < 200; ++i) {
      std::size_t before = device.notices().all().size();
      steps.push_back(step(rng, m));
      process->runDue();
      ASSERT_FALSE(process->crashed()) << "seed " << seed << ": " << process->crashReason();
      auto all = device.notices().all();
      for (std::size_t k = before; k < all.size(); ++k) {
        if (auto breach = judge(m, all[k])) {
          std::string trail;
          for (std::size_t j = steps.size() > 8 ? steps.size() - 8 : 0; j < steps.size(); ++j)
            trail += "\n  " + steps[j];
          FAIL() << "seed " << seed << " (rerun with QB_SEED=" << seed << "), step " << i << ": " << *breach
                 << " (" << all[k].kind << " from " << all[k].from << ": banner '" << all[k].banner << "', sound "
                 << all[k].sound << ", vibrations " << all[k].vibrations << ")\nlast steps:" << trail;
        }
      }
    }
    process.reset();
  }
}

}  // namespace
