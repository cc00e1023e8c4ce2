// Key-value coding on iOS is Foundation's own valueForKey: and
// setValue:forKey:; an exception they raise (NSUnknownKeyException) comes
// back as rt::Exception.
#include "rt/kvc.hpp"

#import <Foundation/Foundation.h>

#include "bridge.h"

namespace rt {

Id valueForKey(Id obj, std::string_view key) {
  if (!obj) return nullptr;
  return ios::translating([&] { return ios::handle([ios::object(obj) valueForKey:ios::ns(key)]); });
}

void setValueForKey(Id obj, Id value, std::string_view key) {
  if (!obj) return;
  ios::translating([&] { [ios::object(obj) setValue:ios::object(value) forKey:ios::ns(key)]; });
}

}  // namespace rt
