// The checks that make ABI slips and injected host faults visible: every
// implementation remembers the normalized type encodings it was installed
// under, so that a send or a call of a stored IMP can be compared with them;
// a mismatch is recorded here (and raises where it happened), and the
// simulator fails on any record. Host faults: an implementation made to raise
// instead of running.
// Threads: everything here may be called from any thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "rt/types.hpp"

namespace sim {

class TypeChecks {
 public:
  void noteImplementation(rt::IMP imp, const std::string& normalized);
  // True when `imp` was installed under types that `normalized` calls safely
  // (rt::sameCallTypes), or without any types.
  bool implementationAccepts(rt::IMP imp, const std::string& normalized) const;
  bool knowsImplementation(rt::IMP imp) const;
  // Changes whenever an implementation gains types, to a number no other
  // runtime's checks have had: answers remembered under it still hold.
  std::uint64_t generation() const { return generation_.load(std::memory_order_acquire); }

  void recordViolation(std::string what);
  std::vector<std::string> violations() const;

  // Calls that reach `imp` raise `what` instead of running it.
  void makeRaising(rt::IMP imp, std::string what);
  // What a call of `imp` raises, or null when it runs normally.
  const std::string* raisingWhat(rt::IMP imp) const {
    return anyRaising_.load(std::memory_order_acquire) ? raisingLookup(imp) : nullptr;
  }

 private:
  const std::string* raisingLookup(rt::IMP imp) const;

  mutable std::mutex mutex_;
  std::atomic<std::uint64_t> generation_{nextGeneration()};
  static std::uint64_t nextGeneration();
  std::atomic<bool> anyRaising_{false};  // most runs inject no fault: skip the lock
  std::unordered_map<rt::IMP, std::vector<std::string>> impTypes_;
  std::unordered_map<rt::IMP, std::string> raising_;
  std::vector<std::string> violations_;
};

}  // namespace sim
