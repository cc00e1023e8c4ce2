// The world the swarm drives: a fresh simulated phone with the host app on
// it, run one scenario line at a time, and what a person could see of it
// after each line. It chooses nothing and judges nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "session.hpp"
#include "swarm_checker.hpp"

namespace qbsim::swarm {

class World {
 public:
  World(std::uint64_t seed, std::ostream* live);

  std::mt19937_64& random() { return session_.device().random(); }
  std::uint64_t seed() { return session_.device().seed(); }
  double elapsed() { return session_.device().elapsed(); }
  bool running() { return session_.process() != nullptr; }
  bool active();

  // The screen on top, by what a person would call it: "alert", "biometric",
  // "panel", "picker", "(not running)", or the controller's class.
  std::string screen();
  // The panel's sheet is on screen, under whatever it presents.
  bool panelSheetUp();
  // The panel's sheet, a dialog (the password prompt among them) or a
  // biometric check holds the screen: each must be done with first.
  bool panelOrPromptUp();
  // The panel itself is on top, with nothing over it.
  bool panelOnTop();
  // A row of the panel as shown: its small print and its switch ("on",
  // "off"); none when the panel or the row is not there.
  struct ShownRow {
    std::string detail, state;
  };
  std::optional<ShownRow> panelRow(long section, long row);

  // Where the world stood before a line: what the line's observation starts from.
  struct Before {
    std::string screen;
    bool panelSheetUp = false;
    std::size_t notices = 0, log = 0;
  };
  Before before();
  // Runs a line as `run` runs it: applied, or skipped with the reason, or
  // the app broke.
  struct Ran {
    bool applied = true;
    std::string skipped;
    std::optional<std::string> crash;
  };
  Ran run(const std::string& line);
  // What a person could see since `before`; `left`: the line took the app
  // away, so the app switcher's picture counts.
  Observation observe(const Before& before, bool left);

  void writeSettingsFile(const std::string& bytes);
  // What the host had to show when a screen loaded: the friends a search
  // for `text` finds, the authors of moments, the recent chats.
  std::vector<std::string> friendsMatching(const std::string& text);
  std::vector<std::string> momentAuthors();
  std::vector<std::string> recentChats();

 private:
  std::ostringstream discard_;
  Session session_;
};

}  // namespace qbsim::swarm
