// The objects one process has made, and the
// interned constants: equal strings, small numbers, booleans, NSNull, index
// paths, and the per-process singletons of the simulated frameworks. A
// deallocated object keeps its record until the process ends, marked freed,
// so that a message that still reaches it stops the process with its name.
// Threads: allocating, counting and interning strings are safe from any
// thread; the other interned tables are main-thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sim/runtime/object.hpp"
#include "sim/runtime/string_map.hpp"

namespace sim {

class ObjectHeap {
 public:
  rt::Id allocate(rt::Class cls, std::uint64_t serial);
  std::size_t count() const;
  std::vector<rt::Id> live() const;

  rt::Id internedString(std::string_view utf8, const std::function<rt::Id()>& make);
  // Never the same for two heaps of the program, live or gone.
  std::uint64_t generation() const { return generation_; }
  rt::Id& nullObject() { return null_; }
  rt::Id& boolObject(bool b) { return b ? yes_ : no_; }
  std::unordered_map<long, rt::Id>& smallIntegers() { return smallIntegers_; }
  // Keyed by (row, section); a hash, as a list walks thousands of rows.
  struct PathKeyHash {
    std::size_t operator()(const std::pair<long, long>& k) const {
      return std::hash<long>{}(k.first * 1000003L ^ k.second);
    }
  };
  using IndexPathTable = std::unordered_map<std::pair<long, long>, rt::Id, PathKeyHash>;
  IndexPathTable& indexPaths() { return indexPaths_; }
  rt::Id& singleton(const std::string& name) { return singletons_[name]; }
  std::vector<rt::Id> singletons() const {
    std::vector<rt::Id> out;
    for (const auto& [name, obj] : singletons_) out.push_back(obj);
    return out;
  }

 private:
  mutable std::mutex objectsMutex_;
  std::vector<std::unique_ptr<rt::Object>> objects_;

  static std::uint64_t nextGeneration();

  // Tells this heap's entries in the per-thread intern cache from a dead one's.
  const std::uint64_t generation_ = nextGeneration();
  std::mutex internMutex_;
  StringMap<rt::Id> strings_;  // never erased: the cache points at its keys
  rt::Id null_ = nullptr, yes_ = nullptr, no_ = nullptr;
  std::unordered_map<long, rt::Id> smallIntegers_;
  IndexPathTable indexPaths_;
  std::unordered_map<std::string, rt::Id> singletons_;  // references stay valid as it grows
};

}  // namespace sim
