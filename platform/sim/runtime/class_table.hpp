// The runtime's class table: every class and metaclass record of one process,
// by name (objc_getClass, objc_allocateClassPair, objc_registerClassPair,
// objc_copyClassList). Records live in a deque so the handles stay valid for
// the process's life.
// Threads: defining classes is main-thread work (the host's binary and the
// library's start-up); looking up by name is safe from any thread once the
// classes it finds are defined.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sim/runtime/object.hpp"
#include "sim/runtime/string_map.hpp"

namespace sim {

class ClassTable {
 public:
  // `serials` numbers classes and objects alike, so each has its own.
  explicit ClassTable(std::atomic<std::uint64_t>& serials) : serials_(serials) {}

  // Null when no registered class has the name.
  rt::Class find(std::string_view name) const;
  // A new class and its metaclass, not yet registered. Null if the name is
  // taken (registered or not) or empty.
  rt::Class allocate(rt::Class super, std::string_view name);
  // Makes the class findable; returns false for null or a metaclass.
  bool registerClass(rt::Class cls);
  std::vector<rt::Class> registered() const;
  // Every class and metaclass record, registered or not.
  template <typename F>
  void forEachRecord(F f) {
    for (rt::ClassData& c : classes_) f(&c);
  }

 private:
  rt::Class newRecord(std::string_view name, rt::Class super, bool meta);

  std::deque<rt::ClassData> classes_;
  StringMap<rt::Class> byName_;
  std::atomic<std::uint64_t>& serials_;
};

}  // namespace sim
