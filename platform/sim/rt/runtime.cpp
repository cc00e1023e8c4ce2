// The runtime facade on the simulated runtime: class and selector lookup,
// method records, instance variables, class definition, associated objects.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/object.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/runtime/string_map.hpp"

namespace rt {
namespace {

// Selectors are unique for the life of the program, as in the real runtime,
// so they outlive any one simulated process.
struct SelectorTable {
  std::mutex mutex;
  sim::StringMap<std::unique_ptr<Selector>> byName;
};

SelectorTable& selectors() {
  static SelectorTable table;
  return table;
}

SEL registeredSel(std::string_view name) {
  SelectorTable& t = selectors();
  std::lock_guard lock(t.mutex);
  auto it = t.byName.find(name);
  if (it != t.byName.end()) return it->second.get();
  auto s = std::make_unique<Selector>();
  s->name = std::string(name);
  SEL result = s.get();
  t.byName.emplace(std::string(name), std::move(s));
  return result;
}

}  // namespace

Class getClass(std::string_view name) { return sim::runtime().findClass(name); }

// Most names come from literals at the call site, so a per-thread cache keyed
// by where the text lives skips the lock and the hash; a hit still compares
// the text, so a reused buffer can never give the wrong selector.
SEL sel(std::string_view name) {
  if (name.empty()) return nullptr;
  struct Slot {
    const char* data = nullptr;
    SEL sel = nullptr;
  };
  thread_local Slot cache[512];
  Slot& slot = cache[(reinterpret_cast<std::uintptr_t>(name.data()) >> 3) % 512];
  if (slot.data == name.data() && slot.sel->name == name) return slot.sel;
  SEL s = registeredSel(name);
  slot = {name.data(), s};
  return s;
}

std::string_view selName(SEL s) { return s ? std::string_view(s->name) : std::string_view(); }

Class classOf(Id obj) { return obj ? obj->isa : nullptr; }
Class superclass(Class cls) { return cls ? cls->super : nullptr; }
bool isMetaclass(Class cls) { return cls && cls->meta; }
std::string_view className(Class cls) {
  return cls ? std::string_view(cls->name) : std::string_view("nil");
}

std::string_view className(Id obj) {
  if (!obj) return "nil";
  return className(obj->isa);
}

Id toId(Class cls) { return cls; }

bool isKindOf(Id obj, Class cls) {
  if (!obj || !cls) return false;
  sim::touch(obj, "isKindOfClass:");
  for (Class c = obj->isa; c; c = c->super)
    if (c == cls) return true;
  return false;
}

bool isKindOf(Id obj, std::string_view name) { return isKindOf(obj, getClass(name)); }

bool respondsTo(Id obj, SEL s) {
  sim::touch(obj, "respondsToSelector:");
  return obj && s && sim::runtime().lookup(obj->isa, s) != nullptr;
}
bool instancesRespondTo(Class cls, SEL s) {
  return cls && s && sim::runtime().lookup(cls, s) != nullptr;
}

Method getInstanceMethod(Class cls, SEL s) { return sim::runtime().lookup(cls, s); }
Method getClassMethod(Class cls, SEL s) {
  return cls ? sim::runtime().lookup(cls->isa, s) : nullptr;
}
SEL methodName(Method m) { return m ? m->name : nullptr; }
IMP methodImplementation(Method m) { return m ? m->imp : nullptr; }
const char* typeEncoding(Method m) { return m && m->hasTypes ? m->types.c_str() : nullptr; }

IMP setImplementation(Method m, IMP imp) {
  if (!m || !imp) return nullptr;
  IMP old = m->imp;
  m->imp = imp;
  sim::runtime().noteImplementation(imp, m->normalized);
  sim::runtime().implementationsSwapped();
  sim::runtime().implementationChanged();
  return old;
}

void exchangeImplementations(Method a, Method b) {
  if (!a || !b) return;
  std::swap(a->imp, b->imp);
  sim::runtime().noteImplementation(a->imp, a->normalized);
  sim::runtime().noteImplementation(b->imp, b->normalized);
  sim::runtime().implementationsSwapped();
  sim::runtime().implementationChanged();
}

bool addMethod(Class cls, SEL s, IMP imp, const char* types) {
  return sim::runtime().addMethod(cls, s, imp, types);
}

Ivar getInstanceVariable(Class cls, std::string_view name) {
  return cls ? sim::runtime().findIvar(cls, name) : nullptr;
}
std::string_view ivarName(Ivar iv) { return iv ? std::string_view(iv->name) : std::string_view(); }
const char* ivarTypeEncoding(Ivar iv) { return iv ? iv->types.c_str() : nullptr; }

Id ivarObject(Id obj, Ivar iv) {
  if (!obj || !iv || iv->types.empty() || iv->types[0] != '@' || iv->index >= obj->ivars.size())
    return nullptr;
  return obj->ivars[iv->index].object;
}

void setIvarObject(Id obj, Ivar iv, Id value) {
  if (!obj || !iv || iv->types.empty() || iv->types[0] != '@' || iv->index >= obj->ivars.size())
    return;
  obj->ivars[iv->index].object = value;
}

Id ivarNamed(Id obj, std::string_view name) {
  return obj ? ivarObject(obj, getInstanceVariable(classOf(obj), name)) : nullptr;
}

void setIvarNamed(Id obj, std::string_view name, Id value) {
  if (obj) setIvarObject(obj, getInstanceVariable(classOf(obj), name), value);
}

Class allocateClassPair(Class super, std::string_view name) {
  return sim::runtime().allocateClass(super, name);
}
bool addIvar(Class cls, std::string_view name, const char* types) {
  return sim::runtime().addIvar(cls, name, types ? types : "");
}
void registerClassPair(Class cls) { sim::runtime().registerClass(cls); }
Id createInstance(Class cls) {
  if (!cls) return nullptr;
  Id obj = sim::runtime().allocate(cls);
  sim::captureAllocSite(obj->madeAt);
  return obj;
}

// Associated objects (objc_setAssociatedObject, objc_getAssociatedObject):
// each object keeps its own list of (key, value), keys compared by address.
// Every policy but assign retains the value until it is replaced or the
// object is deallocated (NSObject's dealloc lets go of them).
// Threads: main thread only, as the system uses them (recognisers, markers).
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
