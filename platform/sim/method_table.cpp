#include "sim/method_table.hpp"

#include "rt/encoding.hpp"
#include "sim/type_checks.hpp"

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

rt::Method MethodTable::lookup(rt::Class cls, rt::SEL sel) {
  if (!cls || !sel) return nullptr;
  std::lock_guard lock(lookupMutex_);
  if (cls->cacheEpoch != epoch_) {
    cls->cache.clear();
    cls->cacheEpoch = epoch_;
  }
  if (auto it = cls->cache.find(sel); it != cls->cache.end()) return it->second;
  rt::Method found = nullptr;
  for (rt::Class c = cls; c && !found; c = c->super)
    if (auto it = c->methods.find(sel); it != c->methods.end()) found = it->second;
  cls->cache.emplace(sel, found);  // misses are cached too, as objc4 does
  return found;
}

}  // namespace sim
