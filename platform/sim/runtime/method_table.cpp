#include "sim/runtime/method_table.hpp"

#include <atomic>

#include "rt/encoding.hpp"
#include "sim/runtime/class_table.hpp"
#include "sim/runtime/type_checks.hpp"

namespace sim {

std::uint64_t newCacheEpoch() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

bool MethodTable::add(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types) {
  if (!cls || !sel || !imp) return false;
  {
    std::lock_guard lock(mutex_);
    if (cls->methods.count(sel)) return false;
    rt::MethodData& m = methods_.emplace_back();
    m.name = sel;
    m.imp = imp;
    m.hasTypes = types != nullptr;
    m.types = types ? types : "";
    m.normalized = rt::normalizedEncoding(m.types);
    cls->methods.emplace(sel, &m);
    types_.noteImplementation(imp, m.normalized);
    // The class and everything below it may have cached the inherited
    // method, or the miss, for this selector.
    flushLocked(cls);
  }
  return true;
}

void MethodTable::flush(rt::Class cls) {
  std::lock_guard lock(mutex_);
  flushLocked(cls);
}

void MethodTable::flushLocked(rt::Class cls) {
  if (!cls) return;
  cls->cache.clear();
  cls->cacheEpoch.store(newCacheEpoch(), std::memory_order_release);
  for (rt::Class sub : cls->subclasses) flushLocked(sub);
}

void MethodTable::flushAll() {
  std::lock_guard lock(mutex_);
  classes_.forEachRecord([](rt::Class c) {
    c->cache.clear();
    c->cacheEpoch.store(newCacheEpoch(), std::memory_order_release);
  });
}

Dispatch& MethodTable::dispatch(rt::Class cls, rt::SEL sel) {
  struct Entry {
    rt::Class cls = nullptr;
    rt::SEL sel = nullptr;
    std::uint64_t epoch = 0;
    Dispatch found;
  };
  thread_local Entry recent[1024];
  std::uint64_t epoch = cls->cacheEpoch.load(std::memory_order_acquire);
  auto h =
      (reinterpret_cast<std::uintptr_t>(cls) >> 4) ^ (reinterpret_cast<std::uintptr_t>(sel) >> 3);
  Entry& e = recent[(h ^ (h >> 10)) % 1024];
  if (e.cls == cls && e.sel == sel && e.epoch == epoch) return e.found;
  // Stored with the epoch read before the class cache was read: a flush
  // meanwhile only makes the entry miss next time.
  e = {cls, sel, epoch, lookupLocked(cls, sel)};
  return e.found;
}

Dispatch MethodTable::lookupLocked(rt::Class cls, rt::SEL sel) {
  std::lock_guard lock(mutex_);
  if (auto it = cls->cache.find(sel); it != cls->cache.end())
    return {it->second.method, it->second.imp};
  rt::Method found = nullptr;
  for (rt::Class c = cls; c && !found; c = c->super)
    if (auto it = c->methods.find(sel); it != c->methods.end()) found = it->second;
  rt::CacheEntry entry{found, found ? found->imp : nullptr};
  cls->cache.emplace(sel, entry);  // misses are cached too, as objc4 does
  return {entry.method, entry.imp};
}

}  // namespace sim
