// The simulated Objective-C runtime of one process: its classes, the objects it
// has made (all freed with the process), interned constants, and the checks
// that make ABI slips and injected host faults visible.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "sim/foundation.hpp"
#include "sim/object.hpp"

namespace sim {

class Runtime {
 public:
  Runtime();
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  rt::Class findClass(std::string_view name) const;
  // Every registered class (not metaclasses), in the order they were made
  // (objc_copyClassList).
  std::vector<rt::Class> registeredClasses() const;
  // A new class and its metaclass, not yet registered. Null if the name is taken.
  rt::Class allocateClass(rt::Class super, std::string_view name);
  void registerClass(rt::Class cls);
  bool addIvar(rt::Class cls, std::string_view name, std::string_view types);
  rt::Ivar findIvar(rt::Class cls, std::string_view name) const;

  bool addMethod(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types);
  rt::Method lookup(rt::Class cls, rt::SEL sel);
  // Any change of a method drops every lookup cache.
  void methodsChanged() { ++epoch_; }
  std::uint64_t epoch() const { return epoch_; }

  // Every implementation remembers the normalized types it was installed
  // under, so that a call of a stored IMP can be checked.
  void noteImplementation(rt::IMP imp, const std::string& normalized);
  bool implementationAccepts(rt::IMP imp, const std::string& normalized) const;
  bool knowsImplementation(rt::IMP imp) const;

  // Fault injection: calls that reach `imp` raise instead of running it.
  void makeRaising(rt::IMP imp, std::string what);
  const std::string* raisingWhat(rt::IMP imp) const;

  // ABI mismatches seen (they also raise); the simulator fails on any.
  void recordViolation(std::string what) { violations_.push_back(std::move(what)); }
  const std::vector<std::string>& violations() const { return violations_; }

  // The Foundation classes, once registered.
  FoundationClasses foundation;

  rt::Id allocate(rt::Class cls);
  std::size_t objectCount() const;

  // Interned constants: equal strings, small numbers, booleans, NSNull.
  rt::Id internedString(std::string_view utf8, const std::function<rt::Id()>& make);
  rt::Id& nullObject() { return null_; }
  rt::Id& boolObject(bool b) { return b ? yes_ : no_; }
  std::unordered_map<long, rt::Id>& smallIntegers() { return smallIntegers_; }
  std::map<std::pair<long, long>, rt::Id>& indexPaths() { return indexPaths_; }
  // Per-process singletons of the simulated frameworks ([UIApplication
  // sharedApplication], …), by name.
  rt::Id& singleton(const std::string& name) { return singletons_[name]; }

 private:
  rt::Class newClassRecord(std::string_view name, rt::Class super, bool meta);

  std::deque<rt::ClassData> classes_;
  std::unordered_map<std::string, rt::Class> byName_;
  std::deque<rt::MethodData> methods_;
  std::deque<rt::IvarData> ivars_;
  std::atomic<std::uint64_t> epoch_{1};
  // Lookups fill the per-class caches, and the host sends some messages from
  // its other threads: one lock around filling and reading them.
  std::mutex lookupMutex_;

  std::unordered_map<rt::IMP, std::vector<std::string>> impTypes_;
  std::unordered_map<rt::IMP, std::string> raising_;
  std::vector<std::string> violations_;

  mutable std::mutex objectsMutex_;
  std::vector<std::unique_ptr<rt::Object>> objects_;
  std::uint64_t nextSerial_ = 1;

  std::mutex internMutex_;
  std::unordered_map<std::string, rt::Id> strings_;
  rt::Id null_ = nullptr, yes_ = nullptr, no_ = nullptr;
  std::unordered_map<long, rt::Id> smallIntegers_;
  std::map<std::pair<long, long>, rt::Id> indexPaths_;
  std::map<std::string, rt::Id> singletons_;
};

// The runtime of the current simulated process. Aborts with a message when no
// process is running: system code outside a process is a test bug.
Runtime& runtime();

// The C++ state stored behind an object, or null when it holds another type.
template <typename T>
T* native(rt::Id obj) {
  return obj ? std::any_cast<T>(&obj->native) : nullptr;
}

}  // namespace sim
