#include "sim/object_heap.hpp"

namespace sim {

rt::Id ObjectHeap::allocate(rt::Class cls, std::uint64_t serial) {
  auto obj = std::make_unique<rt::Object>();
  obj->isa = cls;
  obj->ivars.resize(cls ? cls->ivarCount : 0);
  obj->serial = serial;
  std::lock_guard lock(objectsMutex_);
  objects_.push_back(std::move(obj));
  return objects_.back().get();
}

std::size_t ObjectHeap::count() const {
  std::lock_guard lock(objectsMutex_);
  return objects_.size();
}

rt::Id ObjectHeap::internedString(std::string_view utf8, const std::function<rt::Id()>& make) {
  std::lock_guard lock(internMutex_);
  auto it = strings_.find(std::string(utf8));
  if (it != strings_.end()) return it->second;
  rt::Id s = make();
  strings_.emplace(std::string(utf8), s);
  return s;
}

}  // namespace sim
