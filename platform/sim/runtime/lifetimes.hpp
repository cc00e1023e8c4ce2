// Object lifetimes as a phone keeps them: weak slots that read nil once their
// object is deallocated, the autorelease pool that the end of every main-queue
// turn drains, and the stop of the process when a message reaches a freed
// object (the crash a phone would have). Counts live on the objects.
// Threads: main thread only, as the system keeps its objects.
//
// Kinder than a phone, still: Foundation values (strings, numbers, arrays,
// dictionaries, sets, dates, index paths) are made outside alloc, carry no
// count and are never freed, so a value kept as a raw pointer across a turn
// goes on working here where a phone may crash; the host's surface screens
// (search, Moments, forward) stay alive after they are popped, for the
// simulator to read what they last showed; and the host's own list cells
// are never freed.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rt/runtime.hpp"
#include "sim/runtime/object.hpp"

namespace sim {

class Lifetimes {
 public:
  // When off, an object whose last owner lets go stays alive, as the
  // simulation once kept everything: for a test that wants the kinder world.
  bool strict = true;
  // Set while the process ends: its objects go all at once, with no deallocs.
  bool tearingDown = false;

  void storeWeak(rt::Id* slot, rt::Id obj);
  // Every weak slot of the object reads nil from now on.
  void clearWeak(rt::Id obj);

  void autorelease(rt::Id obj) { pool_.push_back(obj); }
  // Releases what the pool holds, and what those releases put in it.
  void drain();

 private:
  std::unordered_map<rt::Id, std::vector<rt::Id*>> weak_;
  std::vector<rt::Id> pool_;
};

// objc_autorelease: the pool of the current turn releases the object at its
// end. For what the simulated frameworks hand out as UIKit's convenience
// constructors do, and what they drop while the caller may still use it.
rt::Id autorelease(rt::Id obj);

// "-[CLASS SELECTOR]" for a message to a freed object: the process stops
// with that line, and the sender unwinds. These two reach the current
// process, so process.cpp defines them.
[[noreturn]] void messagedFreedObject(rt::Id obj, std::string_view selector);
// Stops the process when `obj` was freed (a runtime call that reads the
// object crashes on a phone as a message does).
inline void touch(rt::Id obj, std::string_view what) {
  if (obj && obj->freed) messagedFreedObject(obj, what);
}
// The same for a message: the selector's name is looked up only for the crash.
inline void touch(rt::Id obj, rt::SEL message) {
  if (obj && obj->freed) messagedFreedObject(obj, rt::selName(message));
}

}  // namespace sim
