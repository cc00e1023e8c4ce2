// Strong and weak handles over ARC: the casts below compile to objc_retain,
// objc_release, objc_storeWeak and objc_loadWeakRetained.
#include "rt/ownership.hpp"

#include "bridge.h"

namespace rt::detail {

Id retain(Id obj) {
  if (!obj) return nullptr;
  return reinterpret_cast<Id>((__bridge_retained void*)ios::object(obj));
}

void release(Id obj) {
  if (!obj) return;
  id gone = (__bridge_transfer id) reinterpret_cast<void*>(obj);
  (void)gone;
}

void storeWeak(Id* slot, Id obj) {
  __weak id* weak = (__weak id*)reinterpret_cast<void*>(slot);
  *weak = ios::object(obj);
}

Id loadWeakRetained(Id* slot) {
  __weak id* weak = (__weak id*)reinterpret_cast<void*>(slot);
  id strong = *weak;
  return strong ? reinterpret_cast<Id>((__bridge_retained void*)strong) : nullptr;
}

}  // namespace rt::detail
