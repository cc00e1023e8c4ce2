// Reading a host object by key without raising for a key it cannot answer.
// Key-value coding raises NSUnknownKeyException for such a key, and an
// exception per probe is what made every hooked list pass slow (and noisy to
// crash reporters). So the runtime is asked first whether valueForKey: would
// find an accessor or an instance variable; only then is it called. Classes
// that answer keys their own way (dictionaries, proxies, any override of
// valueForKey: or valueForUndefinedKey:) are asked directly. Stateless, so
// safe from any thread the host calls in on.
#include <string>

#include "rt/exception.hpp"
#include "rt/kvc.hpp"
#include "rt/kvc_search.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace rt {
namespace {

Class rootOf(Class cls) {
  while (Class super = superclass(cls)) cls = super;
  return cls;
}

bool sameAsRoot(Class cls, Class root, SEL s) {
  Method mine = getInstanceMethod(cls, s);
  Method base = getInstanceMethod(root, s);
  return mine && base && methodImplementation(mine) == methodImplementation(base);
}

// The collection accessors valueForKey: also accepts: the array pattern
// (countOf<Key> with objectIn<Key>AtIndex: or <key>AtIndexes:) and the set
// pattern (countOf<Key>, enumeratorOf<Key>, memberOf<Key>:).
bool hasCollectionAccessors(Class cls, const KeySearch& p) {
  if (!getInstanceMethod(cls, p.countOf)) return false;
  if (getInstanceMethod(cls, p.objectInAtIndex) || getInstanceMethod(cls, p.atIndexes)) return true;
  return getInstanceMethod(cls, p.enumeratorOf) && getInstanceMethod(cls, p.memberOf);
}

bool accessesInstanceVariables(Class cls) {
  static const SEL s = sel("accessInstanceVariablesDirectly");
  return !respondsTo(toId(cls), s) || send<bool>(cls, s);
}

bool answersKeysItsOwnWay(Class cls) {
  static const SEL valueForKeySel = sel("valueForKey:");
  static const SEL undefinedKeySel = sel("valueForUndefinedKey:");
  Class root = rootOf(cls);
  return !sameAsRoot(cls, root, valueForKeySel) || !sameAsRoot(cls, root, undefinedKeySel);
}

// How valueForKey: finds the key on a class known not to answer keys its own
// way: Foundation's search, stopped at the first thing it would use.
KeyRead standardRead(Class cls, std::string_view key) {
  using Kind = KeyRead::Kind;
  const KeySearch& p = keySearch(key);
  for (SEL s : p.getters)
    if (getInstanceMethod(cls, s)) return {Kind::Ask};
  if (hasCollectionAccessors(cls, p)) return {Kind::Ask};
  if (isMetaclass(cls) || !accessesInstanceVariables(cls)) return {};
  for (const std::string& name : p.ivars)
    if (Ivar iv = getInstanceVariable(cls, name)) {
      const char* type = ivarTypeEncoding(iv);
      if (type && type[0] == '@') return {Kind::InstanceVariable, iv};
      return {Kind::Ask};
    }
  return {};
}

bool findsByAccessorOrIvar(Class cls, std::string_view key) {
  return standardRead(cls, key).kind != KeyRead::Kind::None;
}

Id valueOrNil(Id obj, std::string_view key) {
  try {
    return valueForKey(obj, key);
  } catch (...) {
    // The accessor itself failed: no value, and the next key is tried. The
    // host's exception is expected here; one of ours is not.
    if (!handlingHostException()) reportInternalFailure(describeCurrentException());
    return nullptr;
  }
}

}  // namespace

bool keyValueCodingFinds(Id obj, std::string_view key) {
  if (!obj || key.empty()) return false;
  Class cls = classOf(obj);
  // One that answers keys its own way: only asking tells.
  return answersKeysItsOwnWay(cls) || findsByAccessorOrIvar(cls, key);
}

KeyRead keyReadOn(Class cls, std::string_view key) {
  if (!cls || key.empty()) return {};
  if (answersKeysItsOwnWay(cls)) return {KeyRead::Kind::Ask};
  return standardRead(cls, key);
}

Id readKey(Id obj, std::string_view key, const KeyRead& how) {
  if (!obj) return nullptr;
  switch (how.kind) {
    case KeyRead::Kind::InstanceVariable:
      return ivarObject(obj, how.ivar);
    case KeyRead::Kind::Ask:
      return valueOrNil(obj, key);
    case KeyRead::Kind::None:
      break;
  }
  return nullptr;
}

Id probeKey(Id obj, std::string_view key) {
  return keyValueCodingFinds(obj, key) ? valueOrNil(obj, key) : nullptr;
}

KeyProbe::KeyProbe(Id obj) : obj_(obj), ownWay_(obj && answersKeysItsOwnWay(classOf(obj))) {}

bool KeyProbe::finds(std::string_view key) const {
  if (!obj_ || key.empty()) return false;
  return ownWay_ || findsByAccessorOrIvar(classOf(obj_), key);
}

Id KeyProbe::operator()(std::string_view key) const {
  return finds(key) ? valueOrNil(obj_, key) : nullptr;
}

}  // namespace rt
