#include "sim/events/notification_center.hpp"

#include <algorithm>

namespace sim {

std::uint64_t NotificationCenter::add(std::string name, sys::Observer block) {
  observers_.push_back(Entry{nextId_, std::move(name), std::move(block)});
  return nextId_++;
}

void NotificationCenter::remove(std::uint64_t id) {
  std::erase_if(observers_, [&](const Entry& e) { return e.id == id; });
}

void NotificationCenter::post(const sys::Notification& n) {
  std::vector<std::uint64_t> targets;
  for (const Entry& e : observers_)
    if (e.name.empty() || e.name == n.name) targets.push_back(e.id);
  for (std::uint64_t id : targets) {
    auto it = std::find_if(observers_.begin(), observers_.end(),
                           [&](const Entry& e) { return e.id == id; });
    if (it == observers_.end()) continue;
    sys::Observer block = it->block;  // the observer may remove itself while running
    block(n);
  }
}

}  // namespace sim
