#include "sim/events/main_queue.hpp"

#include <cmath>

namespace sim {

void MainQueue::submit(double due, sys::Block block) {
  std::lock_guard lock(mutex_);
  items_.push(Item{due, nextSeq_++, std::move(block), 0});
}

std::uint64_t MainQueue::addTimer(double firstDue, double interval, sys::Block tick) {
  std::lock_guard lock(mutex_);
  std::uint64_t id = nextTimer_++;
  timers_.emplace(id, TimerInfo{interval, std::move(tick)});
  items_.push(Item{firstDue, nextSeq_++, nullptr, id});
  return id;
}

void MainQueue::cancelTimer(std::uint64_t id) {
  std::lock_guard lock(mutex_);
  timers_.erase(id);
}

bool MainQueue::takeNext(double until, double now, double& due, sys::Block& block) {
  std::lock_guard lock(mutex_);
  while (!items_.empty() && items_.top().due <= until) {
    Item item = std::move(const_cast<Item&>(items_.top()));
    items_.pop();
    due = item.due;
    if (!item.timer) {
      block = std::move(item.block);
      return true;
    }
    auto it = timers_.find(item.timer);
    if (it == timers_.end()) continue;  // invalidated
    double interval = it->second.interval > 0 ? it->second.interval : 0.0001;
    double next = item.due + interval;
    if (next <= now) next += interval * std::floor((now - next) / interval + 1);
    items_.push(Item{next, nextSeq_++, nullptr, item.timer});
    block = it->second.tick;
    return true;
  }
  return false;
}

bool MainQueue::nextDue(double& due) const {
  std::lock_guard lock(mutex_);
  // An invalidated timer's item may be on top; it runs nothing but is harmless
  // to report: the caller only learns when to look again.
  if (items_.empty()) return false;
  due = items_.top().due;
  return true;
}

void MainQueue::clear() {
  std::lock_guard lock(mutex_);
  items_ = {};
  timers_.clear();
}

std::size_t MainQueue::pending() const {
  std::lock_guard lock(mutex_);
  return items_.size();
}

std::size_t MainQueue::activeTimers() const {
  std::lock_guard lock(mutex_);
  return timers_.size();
}

}  // namespace sim
