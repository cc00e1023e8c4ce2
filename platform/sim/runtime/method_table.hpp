// Method lists and the lookup cache (class_addMethod, class_getInstanceMethod,
// the cache objc_msgSend consults). Each class keeps its own methods and a
// cache of lookups, misses included as objc4 caches them; any change of any
// method anywhere drops every cache (an epoch, bumped by `changed`). In front
// of those sits a small per-thread cache that needs no lock; its entries carry
// the epoch, which is unique across every runtime of the program, so an entry
// is used only while nothing has changed in the runtime that filled it.
// Threads: `lookup` is safe from any thread (the host sends some messages
// from its other threads); adding and changing methods is main-thread work.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>

#include "sim/runtime/object.hpp"

namespace sim {

class TypeChecks;

class MethodTable {
 public:
  explicit MethodTable(TypeChecks& types) : types_(types) {}

  // Adds to the class itself; false when it already has `sel`, or for null
  // arguments. Null `types` is kept as "no encoding".
  bool add(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types);
  // The method of the class or its nearest superclass; null when none.
  rt::Method lookup(rt::Class cls, rt::SEL sel);
  // Any change of a method drops every lookup cache.
  void changed() { epoch_ = nextEpoch(); }

 private:
  TypeChecks& types_;
  std::deque<rt::MethodData> methods_;
  static std::uint64_t nextEpoch();
  rt::Method lookupLocked(rt::Class cls, rt::SEL sel);

  std::atomic<std::uint64_t> epoch_{nextEpoch()};
  std::mutex lookupMutex_;  // the per-class caches are filled under it
};

}  // namespace sim
