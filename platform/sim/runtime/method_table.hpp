// Method lists and the method caches (class_addMethod, class_getInstanceMethod,
// and the cache objc_msgSend consults), kept as objc4 keeps them. Each class
// caches what sends to its instances found, misses included: the method and
// the implementation it had, filled on the first send of a selector. Adding a
// method flushes the caches of its class and of every class below it (the
// root metaclass inherits from the root class, so a method added to the root
// reaches every class method lookup); setting or exchanging an implementation
// flushes every class's cache, as method_exchangeImplementations does, since
// any class may have cached the method.
// In front of the class caches sits a small per-thread copy that needs no
// lock. Its entries carry their class's cache epoch, renewed by every flush
// with a number unique across every runtime of the program, so an entry
// answers only while its class's cache has not been flushed since.
// Threads: `lookup` and `dispatch` are safe from any thread (the host sends
// some messages from its other threads); adding and changing methods is
// main-thread work.
#pragma once

#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "sim/runtime/object.hpp"

namespace sim {

class ClassTable;
class TypeChecks;

// A number no class cache has had before, in any runtime of the program.
std::uint64_t newCacheEpoch();

// What a send of one selector to one class reaches, as the calling thread
// last saw it in the class's cache.
struct Dispatch {
  rt::Method method = nullptr;  // null: nothing answers
  rt::IMP imp = nullptr;        // the implementation when cached
  // A call signature already compared with the method's types and found to
  // match (signatures live for the program, so the address names the text).
  const std::string* matched = nullptr;
};

class MethodTable {
 public:
  MethodTable(TypeChecks& types, ClassTable& classes) : types_(types), classes_(classes) {}

  // Adds to the class itself; false when it already has `sel`, or for null
  // arguments. Null `types` is kept as "no encoding".
  bool add(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types);
  // The method of the class or its nearest superclass; null when none.
  rt::Method lookup(rt::Class cls, rt::SEL sel) {
    return cls && sel ? dispatch(cls, sel).method : nullptr;
  }
  // The cache entry a send uses; valid until this thread's next dispatch.
  Dispatch& dispatch(rt::Class cls, rt::SEL sel);
  // The caches of `cls` and every class that inherits from it.
  void flush(rt::Class cls);
  // Every class's cache: an implementation changed.
  void flushAll();

 private:
  Dispatch lookupLocked(rt::Class cls, rt::SEL sel);
  void flushLocked(rt::Class cls);

  TypeChecks& types_;
  ClassTable& classes_;
  std::deque<rt::MethodData> methods_;
  std::mutex mutex_;  // the class caches and method lists change under it
};

}  // namespace sim
