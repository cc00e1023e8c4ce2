#include "sim/runtime/ivar_table.hpp"

#include <string>

namespace sim {

bool IvarTable::add(rt::Class cls, std::string_view name, std::string_view types) {
  if (!cls || cls->meta || cls->registered || name.empty() || find(cls, name)) return false;
  rt::IvarData& iv = ivars_.emplace_back();
  iv.name = std::string(name);
  iv.types = std::string(types);
  iv.index = cls->ivarCount++;
  cls->ownIvars.push_back(&iv);
  return true;
}

rt::Ivar IvarTable::find(rt::Class cls, std::string_view name) const {
  for (rt::Class c = cls; c; c = c->super)
    for (rt::Ivar iv : c->ownIvars)
      if (iv->name == name) return iv;
  return nullptr;
}

}  // namespace sim
