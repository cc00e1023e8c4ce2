// Associated objects (objc_setAssociatedObject, objc_getAssociatedObject):
// each object keeps its own list of (key, value), keys compared by address.
// Every policy but assign retains the value until it is replaced or the
// object is deallocated (NSObject's dealloc lets go of them).
// Threads: main thread only, as the system uses them (recognisers, markers).
#include <algorithm>

#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "sim/lifetimes.hpp"
#include "sim/object.hpp"

namespace rt {

void setAssociatedObject(Id obj, const void* key, Id value, Association policy) {
  if (!obj) return;
  sim::touch(obj, "objc_setAssociatedObject");
  bool retained = policy != Association::Assign;
  if (retained) detail::retain(value);
  auto& list = obj->associated;
  auto it = std::find_if(list.begin(), list.end(), [&](const auto& e) { return e.key == key; });
  Object::Association old{key, nullptr, false};
  if (it != list.end()) old = *it;
  if (!value) {
    if (it != list.end()) list.erase(it);
  } else if (it != list.end()) {
    *it = {key, value, retained};
  } else {
    list.push_back({key, value, retained});
  }
  if (old.retained) detail::release(old.value);
}

Id getAssociatedObject(Id obj, const void* key) {
  if (!obj) return nullptr;
  sim::touch(obj, "objc_getAssociatedObject");
  for (const auto& a : obj->associated)
    if (a.key == key) return a.value;
  return nullptr;
}

}  // namespace rt
