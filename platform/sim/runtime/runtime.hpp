// The simulated Objective-C runtime of one process, put together from its
// parts, one concept per file as objc4 and libobjc2 keep them: the class
// table, method lists with the lookup cache, instance variables, the type
// checks with the violation log and injected faults, and the object heap with
// the interned constants. Associated objects live on the objects themselves
// (rt_associated.cpp). Each part's header says which of its calls are safe
// from other threads.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sim/runtime/class_table.hpp"
#include "sim/runtime/ivar_table.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/method_table.hpp"
#include "sim/runtime/object.hpp"
#include "sim/runtime/object_heap.hpp"
#include "sim/runtime/type_checks.hpp"
#include "sim/runtime/value_data.hpp"

namespace sim {

class Runtime {
 public:
  Runtime();
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  ClassTable& classes() { return classes_; }
  MethodTable& methods() { return methods_; }
  IvarTable& ivars() { return ivars_; }
  TypeChecks& types() { return types_; }
  ObjectHeap& heap() { return heap_; }
  Lifetimes& lifetimes() { return lifetimes_; }

  // The calls most code makes, kept here so call sites read as the runtime's.
  rt::Class findClass(std::string_view name) const { return classes_.find(name); }
  std::vector<rt::Class> registeredClasses() const { return classes_.registered(); }
  rt::Class allocateClass(rt::Class super, std::string_view name) {
    return classes_.allocate(super, name);
  }
  void registerClass(rt::Class cls) { classes_.registerClass(cls); }
  bool addIvar(rt::Class cls, std::string_view name, std::string_view types) {
    return ivars_.add(cls, name, types);
  }
  rt::Ivar findIvar(rt::Class cls, std::string_view name) const { return ivars_.find(cls, name); }
  bool addMethod(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types) {
    if (!methods_.add(cls, sel, imp, types)) return false;
    implementationChanged();
    return true;
  }
  rt::Method lookup(rt::Class cls, rt::SEL sel) { return methods_.lookup(cls, sel); }
  // An implementation was set or exchanged: any class may have cached it.
  void implementationsSwapped() { methods_.flushAll(); }
  // A phone may switch threads the moment a method's implementation changes
  // (added, set or exchanged), before the changing code takes its next step;
  // a test puts the host's other thread there with `onImplementationChanged`.
  void onImplementationChanged(std::function<void()> f) { implementationChanged_ = std::move(f); }
  void implementationChanged() {
    if (!implementationChanged_) return;
    auto f = implementationChanged_;  // it may replace itself
    f();
  }

  void noteImplementation(rt::IMP imp, const std::string& normalized) {
    types_.noteImplementation(imp, normalized);
  }
  bool implementationAccepts(rt::IMP imp, const std::string& normalized) const {
    return types_.implementationAccepts(imp, normalized);
  }
  bool knowsImplementation(rt::IMP imp) const { return types_.knowsImplementation(imp); }
  void makeRaising(rt::IMP imp, std::string what) { types_.makeRaising(imp, std::move(what)); }
  const std::string* raisingWhat(rt::IMP imp) const { return types_.raisingWhat(imp); }
  void recordViolation(std::string what) { types_.recordViolation(std::move(what)); }
  std::vector<std::string> violations() const { return types_.violations(); }

  rt::Id allocate(rt::Class cls) { return heap_.allocate(cls, serials_++); }
  std::size_t objectCount() const { return heap_.count(); }
  // The objects not yet deallocated, in the order they were made.
  std::vector<rt::Id> liveObjects() const { return heap_.live(); }
  rt::Id internedString(std::string_view utf8, const std::function<rt::Id()>& make) {
    return heap_.internedString(utf8, make);
  }
  rt::Id& nullObject() { return heap_.nullObject(); }
  rt::Id& boolObject(bool b) { return heap_.boolObject(b); }
  std::unordered_map<long, rt::Id>& smallIntegers() { return heap_.smallIntegers(); }
  ObjectHeap::IndexPathTable& indexPaths() { return heap_.indexPaths(); }
  // Tells this runtime from every other of the program, live or gone.
  std::uint64_t generation() const { return heap_.generation(); }
  // Per-process singletons of the simulated frameworks ([UIApplication
  // sharedApplication], …), by name.
  rt::Id& singleton(const std::string& name) { return heap_.singleton(name); }
  std::vector<rt::Id> singletons() const { return heap_.singletons(); }

  // The Foundation classes, once registered.
  FoundationClasses foundation;

 private:
  std::atomic<std::uint64_t> serials_{1};
  TypeChecks types_;
  ClassTable classes_{serials_};
  MethodTable methods_{types_, classes_};
  IvarTable ivars_;
  ObjectHeap heap_;
  Lifetimes lifetimes_;
  std::function<void()> implementationChanged_;
};

// The runtime of the current simulated process. Aborts with a message when no
// process is running: system code outside a process is a test bug.
Runtime& runtime();

// The C++ state stored behind an object, or null when it holds another type.
// Most host objects hold none: asking them is one test, not a type compare.
template <typename T>
T* native(rt::Id obj) {
  return obj && obj->native.has_value() ? std::any_cast<T>(&obj->native) : nullptr;
}

// How many exceptions named `name` were raised in the program so far, from
// any thread: what a crash reporter would have seen go by.
std::uint64_t raisedCount(std::string_view name);

}  // namespace sim
