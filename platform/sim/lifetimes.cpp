#include "sim/lifetimes.hpp"

#include <algorithm>

#include "rt/exception.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "sim/process.hpp"

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

rt::Id autorelease(rt::Id obj) {
  if (!obj || !hasCurrentProcess() || !currentProcess().hasRuntime()) return obj;
  Lifetimes& l = runtime().lifetimes();
  if (!l.tearingDown) l.autorelease(obj);
  return obj;
}

void messagedFreedObject(rt::Id obj, std::string_view selector) {
  bool isClass = obj->isa && obj->isa->meta;
  std::string line = std::string("message sent to a freed object: ") + (isClass ? "+[" : "-[") +
                     std::string(rt::className(obj->isa)) + " " + std::string(selector) + "]";
  currentProcess().crash(line);
  rt::raise("QBSimFreedObject", line);
}

}  // namespace sim
