// A framework class's property kept in an instance variable of the same name
// with a leading underscore (`_title` behind `title` and `setTitle:`), the
// way the simulated system frameworks declare their value classes.
#pragma once

#include "rt/runtime.hpp"

namespace sim {

inline rt::Id ivarOf(rt::Id obj, const char* name) {
  return rt::ivarObject(obj, rt::getInstanceVariable(rt::classOf(obj), name));
}
inline void setIvarOf(rt::Id obj, const char* name, rt::Id v) {
  rt::setIvarObject(obj, rt::getInstanceVariable(rt::classOf(obj), name), v);
}

template <const char* Name>
rt::Id ivarProperty(rt::Id self, rt::SEL) {
  return ivarOf(self, Name);
}
template <const char* Name>
void setIvarProperty(rt::Id self, rt::SEL, rt::Id v) {
  setIvarOf(self, Name, v);
}

}  // namespace sim
