// The default notification centre of a simulated process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sys/notifications.hpp"

namespace sim {

class NotificationCenter {
 public:
  std::uint64_t add(std::string name, sys::Observer block);
  void remove(std::uint64_t id);
  // Delivers to every matching observer registered before the post began, in
  // registration order; one removed during the post is skipped.
  void post(const sys::Notification& n);
  std::size_t observerCount() const { return observers_.size(); }

 private:
  struct Entry {
    std::uint64_t id;
    std::string name;
    sys::Observer block;
  };
  std::vector<Entry> observers_;
  std::uint64_t nextId_ = 1;
};

}  // namespace sim
