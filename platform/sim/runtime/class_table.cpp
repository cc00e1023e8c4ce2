#include "sim/runtime/class_table.hpp"

#include "sim/runtime/method_table.hpp"

namespace sim {

rt::Class ClassTable::find(std::string_view name) const {
  auto it = byName_.find(name);
  return it != byName_.end() && it->second->registered ? it->second : nullptr;
}

std::vector<rt::Class> ClassTable::registered() const {
  std::vector<rt::Class> out;
  for (const rt::ClassData& c : classes_)
    if (!c.meta && c.registered) out.push_back(const_cast<rt::Class>(&c));
  return out;
}

rt::Class ClassTable::newRecord(std::string_view name, rt::Class super, bool meta) {
  rt::ClassData& c = classes_.emplace_back();
  c.name = std::string(name);
  c.super = super;
  c.meta = meta;
  c.serial = serials_++;
  // A record may reuse a freed one's address: its cache epoch must be new.
  c.cacheEpoch = newCacheEpoch();
  if (super) super->subclasses.push_back(&c);
  return &c;
}

rt::Class ClassTable::allocate(rt::Class super, std::string_view name) {
  if (name.empty() || byName_.count(std::string(name))) return nullptr;
  rt::Class cls = newRecord(name, super, false);
  rt::Class meta;
  if (super) {
    meta = newRecord(name, super->isa, true);
    meta->isa = super->isa->isa;  // every metaclass's isa is the root metaclass
  } else {
    // A root class: its metaclass inherits from the class itself.
    meta = newRecord(name, cls, true);
    meta->isa = meta;
  }
  cls->isa = meta;
  cls->ivarCount = super ? super->ivarCount : 0;
  byName_.emplace(std::string(name), cls);
  return cls;
}

bool ClassTable::registerClass(rt::Class cls) {
  if (!cls || cls->meta) return false;
  cls->registered = true;
  cls->isa->registered = true;
  return true;
}

}  // namespace sim
