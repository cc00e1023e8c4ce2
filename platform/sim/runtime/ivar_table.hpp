// Instance variables (class_addIvar, class_getInstanceVariable): each class
// lists its own; an instance has one slot per variable of its class and its
// superclasses. Variables can be added only before the class is registered.
// Threads: finding is safe from any thread once classes are defined; adding
// is main-thread work.
#pragma once

#include <deque>
#include <string_view>

#include "sim/runtime/object.hpp"

namespace sim {

class IvarTable {
 public:
  // False for a metaclass, a registered class, an empty or taken name.
  bool add(rt::Class cls, std::string_view name, std::string_view types);
  // Searches the class and its superclasses; null when absent.
  rt::Ivar find(rt::Class cls, std::string_view name) const;

 private:
  std::deque<rt::IvarData> ivars_;
};

}  // namespace sim
