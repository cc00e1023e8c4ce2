// The simulated runtime's object model: what an object, a class, a selector,
// a method and an instance variable are. A class is an object whose isa is its
// metaclass; the root metaclass's superclass is the root class, as in objc4.
#pragma once

#include <any>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "rt/types.hpp"
#include "sim/runtime/alloc_sites.hpp"

namespace rt {

struct Selector {
  std::string name;
};

struct MethodData {
  SEL name = nullptr;
  IMP imp = nullptr;
  std::string types;       // as given; may be empty
  bool hasTypes = false;   // false when added with null types
  std::string normalized;  // rt::normalizedEncoding(types)
};

// What a class's cache keeps for one selector: the method a send found (null
// for a miss) and the implementation it had then.
struct CacheEntry {
  Method method = nullptr;
  IMP imp = nullptr;
};

struct IvarData {
  std::string name;
  std::string types;
  std::size_t index = 0;  // slot in Object::ivars
};

// One instance-variable slot; which member is meaningful follows the ivar's type.
struct IvarSlot {
  Id object = nullptr;
  std::int64_t integer = 0;
  double real = 0;
};

struct Object {
  Class isa = nullptr;
  std::uint64_t serial = 0;  // stable, deterministic identity for descriptions
  std::vector<IvarSlot> ivars;
  // The C++ state behind Foundation and host objects (a string's text, an
  // array's elements, a host model's record).
  std::any native;
  struct Association {
    const void* key;
    Id value;
    bool retained;  // false for the assign policy
  };
  std::vector<Association> associated;
  // Ownership: the count of owners (alloc's own +1 included), and whether the
  // object was deallocated. A freed object keeps its record, so that a
  // message reaching it can be named, as a zombie would be.
  long retainCount = 1;
  bool deallocating = false;
  bool freed = false;
  // Where alloc was sent from (objects made by alloc, new or class_createInstance).
  sim::AllocSite madeAt{};
};

struct ClassData : Object {
  std::string name;
  Class super = nullptr;
  bool meta = false;
  bool registered = false;
  std::unordered_map<SEL, Method> methods;  // the class's own
  std::vector<Ivar> ownIvars;
  std::size_t ivarCount = 0;      // slots of an instance, superclasses' included
  std::vector<Class> subclasses;  // direct ones, metaclasses too: what a flush reaches
  // The method cache, filled by sends and flushed by method changes that
  // could make it stale (sim/method_table.hpp); the epoch changes at every flush.
  std::unordered_map<SEL, CacheEntry> cache;
  std::atomic<std::uint64_t> cacheEpoch{0};
};

}  // namespace rt
