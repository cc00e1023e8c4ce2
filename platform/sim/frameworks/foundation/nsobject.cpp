// NSObject: allocation, identity, introspection and key-value coding. KVC
// follows Foundation's search order so that host objects answer keys through
// accessor methods or instance variables exactly as they would on a phone.
#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "rt/kvc_search.hpp"
#include "rt/encoding.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

std::string objectLabel(Id self) {
  char buf[64];
  std::snprintf(buf, sizeof buf, " 0x%llx", static_cast<unsigned long long>(self->serial));
  return std::string(rt::className(self)) + buf;
}

std::string keyText(Id key, const char* selector) {
  auto k = rt::asString(key);
  if (!k)
    rt::raise("NSInvalidArgumentException",
              std::string("-[NSObject ") + selector + "]: key is not a string");
  return *k;
}

// The return type and the arguments of a normalized encoding "R@:A...".
struct Shape {
  std::string ret;
  std::string args;
};

Shape shapeOf(const rt::MethodData& m) {
  if (!m.hasTypes) return {"@", ""};
  const std::string& n = m.normalized;
  const char* start = n.c_str();
  const char* afterRet = rt::skipType(start);
  Shape s;
  s.ret.assign(start, afterRet);
  const char* p = rt::skipType(rt::skipType(afterRet));  // self, _cmd
  s.args = p;
  return s;
}

Id box(const std::string& type, Id self, rt::Method m) {
  rt::IMP imp = m->imp;
  SEL s = m->name;
  switch (type.empty() ? 'v' : type[0]) {
    case '@':
      return rt::call<Id>(imp, self, s);
    case '#':
      return rt::toId(rt::call<rt::Class>(imp, self, s));
    case 'B':
      return rt::boolNumber(rt::call<bool>(imp, self, s));
    case 'c':
      return rt::number(rt::call<char>(imp, self, s));
    case 'C':
      return rt::number(rt::call<unsigned char>(imp, self, s));
    case 's':
      return rt::number(rt::call<short>(imp, self, s));
    case 'S':
      return rt::number(rt::call<unsigned short>(imp, self, s));
    case 'i':
      return rt::number(rt::call<int>(imp, self, s));
    case 'I':
      return rt::number(long(rt::call<unsigned>(imp, self, s)));
    case 'q':
      return rt::number(rt::call<long>(imp, self, s));
    case 'Q':
      return rt::number(long(rt::call<unsigned long>(imp, self, s)));
    case 'f':
      return rt::realNumber(rt::call<float>(imp, self, s));
    case 'd':
      return rt::realNumber(rt::call<double>(imp, self, s));
    case 'v':
      rt::call<void>(imp, self, s);
      return nullptr;
    default:
      return nullptr;  // structs would be NSValue; nothing here reads them
  }
}

Id boxIvar(Id self, rt::Ivar iv) {
  const rt::IvarSlot& slot = self->ivars[iv->index];
  char t = iv->types.empty() ? '@' : iv->types[0];
  switch (t) {
    case '@':
    case '#':
      return slot.object;
    case 'B':
      return rt::boolNumber(slot.integer != 0);
    case 'f':
    case 'd':
      return rt::realNumber(slot.real);
    case 'c':
    case 'C':
    case 's':
    case 'S':
    case 'i':
    case 'I':
    case 'q':
    case 'Q':
    case 'l':
    case 'L':
      return rt::number(long(slot.integer));
    default:
      return nullptr;
  }
}

void unboxInto(const std::string& type, Id value, const std::string& key, rt::IvarSlot* slot,
               Id self, rt::Method m) {
  char t = type.empty() ? '@' : type[0];
  if (t != '@' && t != '#' && !value)
    rt::raise("NSInvalidArgumentException",
              "[<" + objectLabel(self) +
                  "> setNilValueForKey]: could not set nil as the value for the key " + key + ".");
  if (m) {
    rt::IMP imp = m->imp;
    SEL s = m->name;
    switch (t) {
      case '@':
        rt::call<void, Id>(imp, self, s, value);
        return;
      case 'B':
        rt::call<void, bool>(imp, self, s, rt::boolValue(value));
        return;
      case 'c':
        rt::call<void, char>(imp, self, s, char(rt::integerValue(value)));
        return;
      case 'i':
        rt::call<void, int>(imp, self, s, int(rt::integerValue(value)));
        return;
      case 'I':
        rt::call<void, unsigned>(imp, self, s, unsigned(rt::integerValue(value)));
        return;
      case 'q':
        rt::call<void, long>(imp, self, s, rt::integerValue(value));
        return;
      case 'Q':
        rt::call<void, unsigned long>(imp, self, s, (unsigned long)rt::integerValue(value));
        return;
      case 'd':
        rt::call<void, double>(imp, self, s, rt::doubleValue(value));
        return;
      case 'f':
        rt::call<void, float>(imp, self, s, float(rt::doubleValue(value)));
        return;
      default:
        rt::raise("NSInvalidArgumentException", "unsupported setter type for key " + key);
    }
  }
  switch (t) {
    case '@':
    case '#':
      slot->object = value;
      return;
    case 'f':
    case 'd':
      slot->real = rt::doubleValue(value);
      return;
    case 'B':
      slot->integer = rt::boolValue(value) ? 1 : 0;
      return;
    default:
      slot->integer = rt::integerValue(value);
      return;
  }
}

bool accessesIvars(Id self) {
  static const SEL s = rt::sel("accessInstanceVariablesDirectly");
  return rt::send<bool>(self->isa, s);
}

// Foundation keeps the accessor valueForKey: found for a class and key; so
// does this, per thread, only while the class's method cache has not been
// flushed since (any method added to it or above it, any implementation
// changed). Whether the class reads instance variables directly is asked
// again at every read: its own cache is the metaclass's.
struct FoundAccessor {
  rt::Class cls = nullptr;
  std::uint64_t epoch = 0;
  std::string key;
  rt::Method getter = nullptr;  // else the instance variable
  std::string returns;
  rt::Ivar ivar = nullptr;
};

FoundAccessor& accessorSlot(rt::Class cls, const std::string& key) {
  thread_local std::array<FoundAccessor, 64> slots;
  std::size_t h = std::hash<std::string>{}(key) ^ (reinterpret_cast<std::uintptr_t>(cls) >> 4);
  return slots[h % slots.size()];
}

Id valueForKey(Id self, SEL, Id key) {
  std::string k = keyText(key, "valueForKey:");
  rt::Class cls = self->isa;
  std::uint64_t epoch = cls->cacheEpoch.load(std::memory_order_acquire);
  FoundAccessor& found = accessorSlot(cls, k);
  if (found.cls == cls && found.epoch == epoch && found.key == k) {
    // Copied out first: the accessor may read keys itself and reuse the slot.
    rt::Method getter = found.getter;
    rt::Ivar ivar = found.ivar;
    if (getter) return box(std::string(found.returns), self, getter);
    if (!cls->meta && accessesIvars(self)) return boxIvar(self, ivar);
  }
  Runtime& rtm = runtime();
  const rt::KeySearch& search = rt::keySearch(k);
  for (SEL getter : search.getters) {
    rt::Method m = rtm.lookup(cls, getter);
    if (!m) continue;
    Shape shape = shapeOf(*m);
    if (!shape.args.empty()) continue;
    found = {cls, epoch, k, m, shape.ret, nullptr};
    return box(shape.ret, self, m);
  }
  // The ordered to-many pattern: Foundation answers with a proxy array; a
  // snapshot of its elements answers the same reads.
  rt::Method countOf = rtm.lookup(self->isa, search.countOf);
  rt::Method objectAt = rtm.lookup(self->isa, search.objectInAtIndex);
  if (countOf && objectAt) {
    std::vector<Id> items;
    long n = rt::call<long>(countOf->imp, self, countOf->name);
    for (long i = 0; i < n; ++i)
      items.push_back(rt::call<Id>(objectAt->imp, self, objectAt->name, i));
    return rt::array(items);
  }
  if (!cls->meta && accessesIvars(self)) {
    for (const std::string& name : search.ivars)
      if (rt::Ivar iv = rtm.findIvar(cls, name)) {
        found = {cls, epoch, k, nullptr, "", iv};
        return boxIvar(self, iv);
      }
  }
  return rt::send<Id>(self, "valueForUndefinedKey:", key);
}

Id valueForUndefinedKey(Id self, SEL, Id key) {
  rt::raise("NSUnknownKeyException",
            "[<" + objectLabel(self) +
                "> valueForUndefinedKey:]: this class is not key value coding-compliant "
                "for the key " +
                rt::asString(key).value_or("(null)") + ".");
}

void setValueForKey(Id self, SEL, Id value, Id key) {
  std::string k = keyText(key, "setValue:forKey:");
  Runtime& rtm = runtime();
  for (const std::string& name : rt::setterNames(k)) {
    rt::Method m = rtm.lookup(self->isa, rt::sel(name));
    if (!m) continue;
    Shape shape = shapeOf(*m);
    const char* argEnd = rt::skipType(shape.args.c_str());
    if (shape.args.empty() || *argEnd) continue;  // exactly one argument
    unboxInto(shape.args, value, k, nullptr, self, m);
    return;
  }
  if (!self->isa->meta && accessesIvars(self)) {
    for (const std::string& name : rt::ivarNames(k)) {
      if (rt::Ivar iv = rtm.findIvar(self->isa, name)) {
        unboxInto(iv->types, value, k, &self->ivars[iv->index], self, nullptr);
        return;
      }
    }
  }
  rt::send<void>(self, "setValue:forUndefinedKey:", value, key);
}

void setValueForUndefinedKey(Id self, SEL, Id, Id key) {
  rt::raise("NSUnknownKeyException",
            "[<" + objectLabel(self) +
                "> setValue:forUndefinedKey:]: this class is not key value coding-compliant "
                "for the key " +
                rt::asString(key).value_or("(null)") + ".");
}

bool accessInstanceVariablesDirectly(Id, SEL) { return true; }
Id alloc(Id self, SEL) { return rt::createInstance(static_cast<rt::Class>(self)); }
Id newObject(Id self, SEL) { return rt::send<Id>(alloc(self, nullptr), "init"); }
Id init(Id self, SEL) { return self; }
// The end of every dealloc chain: the object lets go of its associated
// objects and of the C++ state behind it (blocks it held included), and stays
// behind, freed, to name itself if a message still reaches it.
void dealloc(Id self, SEL) {
  std::vector<rt::Object::Association> associated;
  associated.swap(self->associated);
  for (const auto& a : associated)
    if (a.retained) rt::detail::release(a.value);
  currentProcess().platform().objectExtras.erase(self);
  std::any state;
  state.swap(self->native);
  state.reset();
  self->freed = true;
}
Id copy(Id self, SEL) { return self; }
rt::Class classOfInstance(Id self, SEL) { return self->isa; }
rt::Class classOfClass(Id self, SEL) { return static_cast<rt::Class>(self); }
bool isKindOfClass(Id self, SEL, rt::Class cls) { return rt::isKindOf(self, cls); }
bool isMemberOfClass(Id self, SEL, rt::Class cls) { return self->isa == cls; }
bool respondsToSelector(Id self, SEL, SEL s) { return rt::respondsTo(self, s); }
bool instancesRespondToSelector(Id self, SEL, SEL s) {
  return rt::instancesRespondTo(static_cast<rt::Class>(self), s);
}
bool isEqual(Id self, SEL, Id other) { return self == other; }
unsigned long hash(Id self, SEL) { return static_cast<unsigned long>(self->serial); }

Id description(Id self, SEL) {
  if (self->isa->meta) return rt::str(rt::className(self));
  return rt::str("<" + std::string(rt::className(self)) + ":" +
                 objectLabel(self).substr(objectLabel(self).find(' ')) + ">");
}

}  // namespace

void registerNSObject(Runtime& rtm) {
  rtm.foundation.object =
      ClassBuilder("NSObject", "")
          .classMethod("alloc", alloc)
          .classMethod("new", newObject)
          .classMethod("accessInstanceVariablesDirectly", accessInstanceVariablesDirectly)
          .classMethod("class", classOfClass)
          .classMethod("instancesRespondToSelector:", instancesRespondToSelector)
          .method("init", init)
          .method("dealloc", dealloc)
          .method("copy", copy)
          .method("class", classOfInstance)
          .method("isKindOfClass:", isKindOfClass)
          .method("isMemberOfClass:", isMemberOfClass)
          .method("respondsToSelector:", respondsToSelector)
          .method("isEqual:", isEqual)
          .method("hash", hash)
          .method("description", description)
          .method("valueForKey:", valueForKey)
          .method("valueForUndefinedKey:", valueForUndefinedKey)
          .method("setValue:forKey:", setValueForKey)
          .method("setValue:forUndefinedKey:", setValueForUndefinedKey)
          .build();
}

}  // namespace sim
