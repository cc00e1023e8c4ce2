// The main queue of a simulated process in virtual time: blocks and timer
// ticks ordered by due time, then by submission.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <queue>
#include <vector>

#include "sys/queue.hpp"

namespace sim {

class MainQueue {
 public:
  void submit(double due, sys::Block block);
  std::uint64_t addTimer(double firstDue, double interval, sys::Block tick);
  void cancelTimer(std::uint64_t id);

  // Takes the earliest item due at or before `until`. Returns false when none.
  // For a timer tick the timer is re-armed first, at its next fire time after
  // `now`: a timer that fell behind (its process was suspended) fires once
  // for all the ticks it missed, as a run loop fires an NSTimer.
  bool takeNext(double until, double now, double& due, sys::Block& block);
  // When the earliest item is due; false when nothing is pending.
  bool nextDue(double& due) const;
  std::size_t pending() const;
  // Drops every pending block and timer (the process ended).
  void clear();
  std::size_t activeTimers() const;

 private:
  struct Item {
    double due;
    std::uint64_t seq;
    sys::Block block;
    std::uint64_t timer;
  };
  struct Later {
    bool operator()(const Item& a, const Item& b) const {
      return a.due != b.due ? a.due > b.due : a.seq > b.seq;
    }
  };
  struct TimerInfo {
    double interval;
    sys::Block tick;
  };

  mutable std::mutex mutex_;
  std::priority_queue<Item, std::vector<Item>, Later> items_;
  std::map<std::uint64_t, TimerInfo> timers_;
  std::uint64_t nextSeq_ = 1;
  std::uint64_t nextTimer_ = 1;
};

}  // namespace sim
