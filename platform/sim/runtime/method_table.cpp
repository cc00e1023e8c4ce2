#include "sim/runtime/method_table.hpp"

#include "rt/encoding.hpp"
#include "sim/runtime/type_checks.hpp"

namespace sim {

bool MethodTable::add(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types) {
  if (!cls || !sel || !imp) return false;
  if (cls->methods.count(sel)) return false;
  rt::MethodData& m = methods_.emplace_back();
  m.name = sel;
  m.imp = imp;
  m.hasTypes = types != nullptr;
  m.types = types ? types : "";
  m.normalized = rt::normalizedEncoding(m.types);
  cls->methods.emplace(sel, &m);
  types_.noteImplementation(imp, m.normalized);
  changed();
  return true;
}

std::uint64_t MethodTable::nextEpoch() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

rt::Method MethodTable::lookup(rt::Class cls, rt::SEL sel) {
  if (!cls || !sel) return nullptr;
  struct Entry {
    rt::Class cls = nullptr;
    rt::SEL sel = nullptr;
    std::uint64_t epoch = 0;
    rt::Method found = nullptr;
  };
  thread_local Entry recent[1024];
  std::uint64_t epoch = epoch_.load(std::memory_order_acquire);
  auto h =
      (reinterpret_cast<std::uintptr_t>(cls) >> 4) ^ (reinterpret_cast<std::uintptr_t>(sel) >> 3);
  Entry& e = recent[(h ^ (h >> 10)) % 1024];
  if (e.cls == cls && e.sel == sel && e.epoch == epoch) return e.found;
  // Stored with the epoch read before the walk: a change meanwhile only makes
  // the entry miss next time.
  rt::Method found = lookupLocked(cls, sel);
  e = {cls, sel, epoch, found};
  return found;
}

rt::Method MethodTable::lookupLocked(rt::Class cls, rt::SEL sel) {
  std::lock_guard lock(lookupMutex_);
  std::uint64_t epoch = epoch_.load();
  if (cls->cacheEpoch != epoch) {
    cls->cache.clear();
    cls->cacheEpoch = epoch;
  }
  if (auto it = cls->cache.find(sel); it != cls->cache.end()) return it->second;
  rt::Method found = nullptr;
  for (rt::Class c = cls; c && !found; c = c->super)
    if (auto it = c->methods.find(sel); it != c->methods.end()) found = it->second;
  cls->cache.emplace(sel, found);  // misses are cached too, as objc4 does
  return found;
}

}  // namespace sim
