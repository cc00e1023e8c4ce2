// Associated objects (objc_setAssociatedObject, objc_getAssociatedObject):
// each object keeps its own list of (key, value), keys compared by address.
// The simulation frees nothing before the process ends, so every policy holds
// its value the same way here.
// Threads: main thread only, as the system uses them (recognisers, markers).
#include <algorithm>

#include "rt/runtime.hpp"
#include "sim/object.hpp"

namespace rt {

void setAssociatedObject(Id obj, const void* key, Id value, Association) {
  if (!obj) return;
  auto& list = obj->associated;
  auto it = std::find_if(list.begin(), list.end(), [&](const auto& e) { return e.first == key; });
  if (!value) {
    if (it != list.end()) list.erase(it);
  } else if (it != list.end()) {
    it->second = value;
  } else {
    list.emplace_back(key, value);
  }
}

Id getAssociatedObject(Id obj, const void* key) {
  if (!obj) return nullptr;
  for (const auto& [k, v] : obj->associated)
    if (k == key) return v;
  return nullptr;
}

}  // namespace rt
