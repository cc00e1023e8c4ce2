// Key-value coding, as Foundation does it: valueForKey: tries the accessor
// methods get<Key>, <key>, is<Key>, _<key>, then the instance variables
// _<key>, _is<Key>, <key>, is<Key>, boxing scalars in NSNumber; dictionaries
// answer with objectForKey:; an unknown key raises NSUnknownKeyException.
#pragma once

#include <string_view>

#include "rt/types.hpp"

namespace rt {

// [obj valueForKey:key]. Nil for a nil object. Raises as the object does.
Id valueForKey(Id obj, std::string_view key);
// [obj setValue:value forKey:key]: set<Key>: then the same instance variables;
// scalars are unboxed. Raises NSUnknownKeyException for an unknown key.
void setValueForKey(Id obj, Id value, std::string_view key);

// Whether [obj valueForKey:key] would find an accessor or an instance
// variable (true, without asking, for a class that overrides valueForKey: or
// valueForUndefinedKey:). Never calls the object's accessors.
bool keyValueCodingFinds(Id obj, std::string_view key);
// valueForKey: that answers nil for a key the object cannot answer (without
// raising: it asks keyValueCodingFinds first) and for an accessor that
// raises; the way the system probes host objects key by key.
Id probeKey(Id obj, std::string_view key);

// How valueForKey: answers a key for every object of one class, found once
// for a caller that reads the key of many objects: not at all (`None`), by
// an object instance variable and nothing before it in Foundation's search
// (`InstanceVariable`, read straight from the object as Foundation's own
// cached getter does), or only by asking (`Ask`: accessors, scalars, classes
// that answer keys their own way).
struct KeyRead {
  enum class Kind { None, InstanceVariable, Ask } kind = Kind::None;
  Ivar ivar = nullptr;
};
KeyRead keyReadOn(Class cls, std::string_view key);
// probeKey for an object of the class `how` was found on.
Id readKey(Id obj, std::string_view key, const KeyRead& how);

// probeKey for several keys of one object: whether its class answers keys its
// own way is asked once, not once per key.
class KeyProbe {
 public:
  explicit KeyProbe(Id obj);
  Id operator()(std::string_view key) const;

 private:
  bool finds(std::string_view key) const;
  Id obj_;
  bool ownWay_ = false;
};

}  // namespace rt
