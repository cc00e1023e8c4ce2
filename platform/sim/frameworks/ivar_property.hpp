// A framework class's property kept in an instance variable of the same name
// with a leading underscore (`_title` behind `title` and `setTitle:`), the
// way the simulated system frameworks declare their value classes.
// Unlike a phone's strong property, the setter does not retain: a value whose
// other owners let go is freed under the object that still points at it (a
// SpringBoard request's content, for one). Whoever sets one keeps it alive.
#pragma once

#include "rt/runtime.hpp"

namespace sim {

template <const char* Name>
rt::Id ivarProperty(rt::Id self, rt::SEL) {
  return rt::ivarNamed(self, Name);
}
template <const char* Name>
void setIvarProperty(rt::Id self, rt::SEL, rt::Id v) {
  rt::setIvarNamed(self, Name, v);
}

}  // namespace sim
