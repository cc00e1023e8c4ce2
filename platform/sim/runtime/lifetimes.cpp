#include "sim/runtime/lifetimes.hpp"

#include <algorithm>

#include "rt/ownership.hpp"
#include "rt/runtime.hpp"

namespace sim {

void Lifetimes::storeWeak(rt::Id* slot, rt::Id obj) {
  if (rt::Id old = *slot) {
    auto it = weak_.find(old);
    if (it != weak_.end()) {
      std::erase(it->second, slot);
      if (it->second.empty()) weak_.erase(it);
    }
  }
  // A deallocating object is already nil to its weak readers.
  if (obj && (obj->deallocating || obj->freed)) obj = nullptr;
  *slot = obj;
  if (obj) weak_[obj].push_back(slot);
}

void Lifetimes::clearWeak(rt::Id obj) {
  auto it = weak_.find(obj);
  if (it == weak_.end()) return;
  for (rt::Id* slot : it->second) *slot = nullptr;
  weak_.erase(it);
}

void Lifetimes::drain() {
  while (!pool_.empty()) {
    std::vector<rt::Id> batch;
    batch.swap(pool_);
    for (rt::Id obj : batch) rt::detail::release(obj);
  }
}

}  // namespace sim
