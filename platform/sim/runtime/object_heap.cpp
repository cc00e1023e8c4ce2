#include "sim/runtime/object_heap.hpp"

#include <atomic>

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

std::vector<rt::Id> ObjectHeap::live() const {
  std::lock_guard lock(objectsMutex_);
  std::vector<rt::Id> out;
  for (const auto& obj : objects_)
    if (!obj->freed) out.push_back(obj.get());
  return out;
}

std::uint64_t ObjectHeap::nextGeneration() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

// Keys and constant texts are interned over and over from the same literals,
// so a per-thread cache keyed by where the text lives skips the lock and the
// hash; a hit still compares the text.
rt::Id ObjectHeap::internedString(std::string_view utf8, const std::function<rt::Id()>& make) {
  struct Entry {
    std::uint64_t generation = 0;
    const char* data = nullptr;
    const std::string* key = nullptr;
    rt::Id id = nullptr;
  };
  thread_local Entry recent[256];
  Entry& e = recent[(reinterpret_cast<std::uintptr_t>(utf8.data()) >> 3) % 256];
  if (e.generation == generation_ && e.data == utf8.data() && *e.key == utf8) return e.id;

  std::lock_guard lock(internMutex_);
  auto it = strings_.find(utf8);
  if (it == strings_.end()) it = strings_.emplace(std::string(utf8), make()).first;
  e = {generation_, utf8.data(), &it->first, it->second};
  return it->second;
}

}  // namespace sim
