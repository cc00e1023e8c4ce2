// The swarm's driver: one user's day on one seed. The seed picks the host
// build, the device, the settings file at start, then the user's steps, all
// drawn from the device's one seeded source. The person's next action comes
// from the weight tables; the driver turns it into scenario lines for the
// world, one at a time (a line that cannot apply now, such as typing with no
// dialog up, is recorded as skipped), tells the checker what each did, and has
// it judge what the world shows after it.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "swarm.hpp"
#include "swarm_actions.hpp"
#include "swarm_checker.hpp"
#include "swarm_settings.hpp"
#include "swarm_world.hpp"

namespace qbsim::swarm {

// Who may be made secret: friends with each kind of name, and a group.
inline constexpr const char* kSecretCandidates[] = {"bob", "carol", "dave", "team@chatroom"};

// Seconds as a wait line writes them: two decimals at most.
std::string seconds(double d);
// A minute of the day as HH:MM.
std::string clock(long minute);

class Day {
 public:
  Day(std::uint64_t seed, std::ostream* live)
      : live_(live), world_(seed, live), rng_(world_.random()) {}

  SeedRun run(int steps);

 private:
  std::uint64_t pick(std::uint64_t n) { return rng_() % n; }
  bool chance(int percent) { return int(pick(100)) < percent; }
  template <typename T, std::size_t N>
  const T& oneOf(const T (&a)[N]) {
    return a[pick(N)];
  }
  Pick picker() {
    return [this](std::uint64_t n) { return pick(n); };
  }

  // Before launch, and the settings file the day may start with.
  void setUp();
  std::string damagedFile();
  std::string legacyFile();
  std::string windowsLine();

  // The day's steps.
  void userStep();
  void open(const std::string& who);
  void setting();
  void edit(const std::string& line);

  // The way in to the panel and its rows (swarm_panel_steps.cpp).
  void aboutTaps();
  void openPanel();
  void panelStep();
  void settingRow();
  void passwordRow();
  void windowEditor();
  void swipeDelete();
  bool sequence(std::initializer_list<std::string> lines);
  void savedNow(const Settings& next);

  // One line to the world, what it tells the checker, the transcript.
  bool exec(const std::string& line, const std::function<void()>& applied = {});
  void tell(const std::string& line, const World::Before& before);
  void note(const std::string& text) { record("# " + text); }
  void record(const std::string& line);
  void fail(const Breach& b);

  std::ostream* live_;
  World world_;
  std::mt19937_64& rng_;
  SeedRun run_;
  Settings model_;  // what the user last saved, as they remember it
  std::optional<Checker> checker_;
  unsigned exempt_ = 0, gone_ = 0;
  std::vector<Window> pendingWindows_;
  std::optional<std::string> typed_;
  std::deque<std::string> recent_;
  int step_ = 0;
};

}  // namespace qbsim::swarm
