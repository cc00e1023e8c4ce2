// Reading a host object by key without raising for a key it cannot answer.
// Key-value coding raises NSUnknownKeyException for such a key, and an
// exception per probe is what made every hooked list pass slow (and noisy to
// crash reporters). So the runtime is asked first whether valueForKey: would
// find an accessor or an instance variable; only then is it called. Classes
// that answer keys their own way (dictionaries, proxies, any override of
// valueForKey: or valueForUndefinedKey:) are asked directly. Stateless, so
// safe from any thread the host calls in on.
#include <array>
#include <string>

#include "rt/kvc.hpp"
#include "rt/kvc_search.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace rt {
namespace {

bool sameAsRoot(Class cls, Class root, SEL s) {
  Method mine = getInstanceMethod(cls, s);
  Method base = getInstanceMethod(root, s);
  return mine && base && methodImplementation(mine) == methodImplementation(base);
}

// The collection accessors valueForKey: also accepts: the array pattern
// (countOf<Key> with objectIn<Key>AtIndex: or <key>AtIndexes:) and the set
// pattern (countOf<Key>, enumeratorOf<Key>, memberOf<Key>:).
bool hasCollectionAccessors(Class cls, std::string_view key) {
  std::string cap = capitalizedKey(key);
  if (!getInstanceMethod(cls, sel("countOf" + cap))) return false;
  if (getInstanceMethod(cls, sel("objectIn" + cap + "AtIndex:")) ||
      getInstanceMethod(cls, sel(std::string(key) + "AtIndexes:")))
    return true;
  return getInstanceMethod(cls, sel("enumeratorOf" + cap)) && getInstanceMethod(cls, sel("memberOf" + cap + ":"));
}

bool accessesInstanceVariables(Class cls) {
  SEL s = sel("accessInstanceVariablesDirectly");
  return !respondsTo(toId(cls), s) || send<bool>(cls, s);
}

}  // namespace

bool keyValueCodingFinds(Id obj, std::string_view key) {
  if (!obj || key.empty()) return false;
  Class cls = classOf(obj);
  Class root = getClass("NSObject");
  if (!root || !sameAsRoot(cls, root, sel("valueForKey:")) || !sameAsRoot(cls, root, sel("valueForUndefinedKey:")))
    return true;  // it answers keys its own way: only asking tells
  for (const std::string& name : getterNames(key))
    if (getInstanceMethod(cls, sel(name))) return true;
  if (hasCollectionAccessors(cls, key)) return true;
  if (isMetaclass(cls) || !accessesInstanceVariables(cls)) return false;
  for (const std::string& name : ivarNames(key))
    if (getInstanceVariable(cls, name)) return true;
  return false;
}

Id probeKey(Id obj, std::string_view key) {
  if (!keyValueCodingFinds(obj, key)) return nullptr;
  try {
    return valueForKey(obj, key);
  } catch (...) {
    return nullptr;  // the accessor itself failed: no value, as before
  }
}

}  // namespace rt
