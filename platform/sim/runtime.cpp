// The simulated runtime's tables. Classes, methods and ivars live in deques so
// that the handles given out stay valid for the life of the process.
#include "sim/runtime.hpp"

#include "rt/encoding.hpp"

namespace sim {

Runtime::Runtime() = default;
Runtime::~Runtime() = default;

rt::Class Runtime::findClass(std::string_view name) const {
  auto it = byName_.find(std::string(name));
  return it != byName_.end() && it->second->registered ? it->second : nullptr;
}

std::vector<rt::Class> Runtime::registeredClasses() const {
  std::vector<rt::Class> out;
  for (const rt::ClassData& c : classes_)
    if (!c.meta && c.registered) out.push_back(const_cast<rt::Class>(&c));
  return out;
}

rt::Class Runtime::newClassRecord(std::string_view name, rt::Class super, bool meta) {
  rt::ClassData& c = classes_.emplace_back();
  c.name = std::string(name);
  c.super = super;
  c.meta = meta;
  c.serial = nextSerial_++;
  return &c;
}

rt::Class Runtime::allocateClass(rt::Class super, std::string_view name) {
  if (name.empty() || byName_.count(std::string(name))) return nullptr;
  rt::Class cls = newClassRecord(name, super, false);
  rt::Class meta;
  if (super) {
    meta = newClassRecord(name, super->isa, true);
    meta->isa = super->isa->isa;  // every metaclass's isa is the root metaclass
  } else {
    // A root class: its metaclass inherits from the class itself.
    meta = newClassRecord(name, cls, true);
    meta->isa = meta;
  }
  cls->isa = meta;
  cls->ivarCount = super ? super->ivarCount : 0;
  byName_.emplace(std::string(name), cls);
  return cls;
}

void Runtime::registerClass(rt::Class cls) {
  if (!cls || cls->meta) return;
  cls->registered = true;
  cls->isa->registered = true;
  methodsChanged();
}

bool Runtime::addIvar(rt::Class cls, std::string_view name, std::string_view types) {
  if (!cls || cls->meta || cls->registered || name.empty() || findIvar(cls, name)) return false;
  rt::IvarData& iv = ivars_.emplace_back();
  iv.name = std::string(name);
  iv.types = std::string(types);
  iv.index = cls->ivarCount++;
  cls->ownIvars.push_back(&iv);
  return true;
}

rt::Ivar Runtime::findIvar(rt::Class cls, std::string_view name) const {
  for (rt::Class c = cls; c; c = c->super)
    for (rt::Ivar iv : c->ownIvars)
      if (iv->name == name) return iv;
  return nullptr;
}

bool Runtime::addMethod(rt::Class cls, rt::SEL sel, rt::IMP imp, const char* types) {
  if (!cls || !sel || !imp) return false;
  if (cls->methods.count(sel)) return false;
  rt::MethodData& m = methods_.emplace_back();
  m.name = sel;
  m.imp = imp;
  m.hasTypes = types != nullptr;
  m.types = types ? types : "";
  m.normalized = rt::normalizedEncoding(m.types);
  cls->methods.emplace(sel, &m);
  noteImplementation(imp, m.normalized);
  methodsChanged();
  return true;
}

rt::Method Runtime::lookup(rt::Class cls, rt::SEL sel) {
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

void Runtime::noteImplementation(rt::IMP imp, const std::string& normalized) {
  if (!imp || normalized.empty()) return;
  auto& list = impTypes_[imp];
  for (const auto& t : list)
    if (t == normalized) return;
  list.push_back(normalized);
}

bool Runtime::implementationAccepts(rt::IMP imp, const std::string& normalized) const {
  auto it = impTypes_.find(imp);
  if (it == impTypes_.end()) return true;  // installed without types: nothing to check against
  for (const auto& t : it->second)
    if (t == normalized) return true;
  return false;
}

bool Runtime::knowsImplementation(rt::IMP imp) const { return impTypes_.count(imp) != 0; }

void Runtime::makeRaising(rt::IMP imp, std::string what) {
  if (imp) raising_[imp] = std::move(what);
}

const std::string* Runtime::raisingWhat(rt::IMP imp) const {
  if (raising_.empty()) return nullptr;
  auto it = raising_.find(imp);
  return it == raising_.end() ? nullptr : &it->second;
}

rt::Id Runtime::allocate(rt::Class cls) {
  auto obj = std::make_unique<rt::Object>();
  obj->isa = cls;
  obj->ivars.resize(cls ? cls->ivarCount : 0);
  std::lock_guard lock(objectsMutex_);
  obj->serial = nextSerial_++;
  objects_.push_back(std::move(obj));
  return objects_.back().get();
}

std::size_t Runtime::objectCount() const {
  std::lock_guard lock(objectsMutex_);
  return objects_.size();
}

rt::Id Runtime::internedString(std::string_view utf8, const std::function<rt::Id()>& make) {
  std::lock_guard lock(internMutex_);
  auto it = strings_.find(std::string(utf8));
  if (it != strings_.end()) return it->second;
  rt::Id s = make();
  strings_.emplace(std::string(utf8), s);
  return s;
}

}  // namespace sim
