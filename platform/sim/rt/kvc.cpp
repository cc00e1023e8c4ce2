#include "rt/kvc.hpp"

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace rt {

// Selectors live as long as the program: resolved once.
Id valueForKey(Id obj, std::string_view key) {
  static const SEL s = sel("valueForKey:");
  return obj ? send<Id>(obj, s, str(key)) : nullptr;
}

void setValueForKey(Id obj, Id value, std::string_view key) {
  static const SEL s = sel("setValue:forKey:");
  send<void>(obj, s, value, str(key));
}

}  // namespace rt
