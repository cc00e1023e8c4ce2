// NSArray, NSDictionary and NSSet with their mutable forms. A mutable class is
// a subclass sharing its immutable parent's storage, so respondsToSelector:
// tells them apart as on iOS (only the mutable ones answer setObject:forKey:).
// Unlike a phone's, a collection holds its elements without retaining them:
// an element whose owners all let go is freed while a collection still lists
// it, and one listed by a reachable collection is never reported as leaked.
// Callers keep what they put in alive as long as the collection is used.
#include <string>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

std::vector<Id>& items(Id self) { return native<ArrayData>(self)->items; }
std::vector<std::pair<Id, Id>>& entries(Id self) { return native<DictionaryData>(self)->entries; }
std::vector<Id>& members(Id self) { return native<SetData>(self)->items; }

[[noreturn]] void outOfRange(Id self, const char* selector, long index, std::size_t count) {
  rt::raise("NSRangeException", "-[" + std::string(rt::className(self)) + " " + selector +
                                    "]: index " + std::to_string(index) + " beyond bounds [0 .. " +
                                    std::to_string(long(count) - 1) + "]");
}

void requireObject(Id obj, Id self, const char* selector) {
  if (!obj)
    rt::raise("NSInvalidArgumentException", "*** -[" + std::string(rt::className(self)) + " " +
                                                selector + "]: object cannot be nil");
}

std::string joinDescriptions(const std::vector<Id>& list) {
  std::string out;
  for (Id e : list) {
    if (!out.empty()) out += ", ";
    out += rt::description(e);
  }
  return out;
}

// --- NSArray
unsigned long arrayCount(Id self, SEL) { return items(self).size(); }
Id objectAtIndex(Id self, SEL, unsigned long i) {
  auto& v = items(self);
  if (i >= v.size()) outOfRange(self, "objectAtIndex:", long(i), v.size());
  return v[i];
}
Id firstObject(Id self, SEL) { return items(self).empty() ? nullptr : items(self).front(); }
Id lastObject(Id self, SEL) { return items(self).empty() ? nullptr : items(self).back(); }
bool arrayContains(Id self, SEL, Id obj) {
  for (Id e : items(self))
    if (sameObjectValue(e, obj)) return true;
  return false;
}
unsigned long indexOfObject(Id self, SEL, Id obj) {
  auto& v = items(self);
  for (std::size_t i = 0; i < v.size(); ++i)
    if (sameObjectValue(v[i], obj)) return i;
  return (unsigned long)LONG_MAX;  // NSNotFound
}
bool arrayEqual(Id self, SEL, Id other) {
  ArrayData* o = native<ArrayData>(other);
  if (!o) return false;
  auto& v = items(self);
  if (v.size() != o->items.size()) return false;
  for (std::size_t i = 0; i < v.size(); ++i)
    if (!sameObjectValue(v[i], o->items[i])) return false;
  return true;
}
Id arrayDescription(Id self, SEL) { return rt::str("(" + joinDescriptions(items(self)) + ")"); }
Id arrayValueForKey(Id self, SEL, Id key) {
  std::vector<Id> out;
  auto k = rt::asString(key).value_or("");
  for (Id e : items(self)) {
    Id v = rt::valueForKey(e, k);
    out.push_back(v ? v : rt::null());
  }
  return rt::array(out);
}
Id arrayCopy(Id self, SEL) { return rt::array(items(self)); }
Id arrayMutableCopy(Id self, SEL) { return rt::mutableArray(items(self)); }
Id arrayNew(Id self, SEL) { return makeArray(static_cast<rt::Class>(self), {}); }
Id arrayWithArray(Id self, SEL, Id other) {
  return makeArray(static_cast<rt::Class>(self), rt::elements(other));
}

// --- NSMutableArray
void addObject(Id self, SEL, Id obj) {
  requireObject(obj, self, "addObject:");
  items(self).push_back(obj);
}
void insertObjectAtIndex(Id self, SEL, Id obj, unsigned long i) {
  requireObject(obj, self, "insertObject:atIndex:");
  auto& v = items(self);
  if (i > v.size()) outOfRange(self, "insertObject:atIndex:", long(i), v.size());
  v.insert(v.begin() + long(i), obj);
}
void removeObjectAtIndex(Id self, SEL, unsigned long i) {
  auto& v = items(self);
  if (i >= v.size()) outOfRange(self, "removeObjectAtIndex:", long(i), v.size());
  v.erase(v.begin() + long(i));
}
void removeObject(Id self, SEL, Id obj) {
  auto& v = items(self);
  std::erase_if(v, [&](Id e) { return sameObjectValue(e, obj); });
}
void removeAllObjects(Id self, SEL) { items(self).clear(); }
void replaceObjectAtIndex(Id self, SEL, unsigned long i, Id obj) {
  requireObject(obj, self, "replaceObjectAtIndex:withObject:");
  auto& v = items(self);
  if (i >= v.size()) outOfRange(self, "replaceObjectAtIndex:withObject:", long(i), v.size());
  v[i] = obj;
}

// --- NSDictionary
unsigned long dictCount(Id self, SEL) { return entries(self).size(); }
Id objectForKey(Id self, SEL, Id key) {
  return key ? dictionaryLookup(*native<DictionaryData>(self), key) : nullptr;
}
Id allKeys(Id self, SEL) {
  std::vector<Id> keys;
  for (auto& [k, v] : entries(self)) keys.push_back(k);
  return rt::array(keys);
}
Id allValues(Id self, SEL) {
  std::vector<Id> values;
  for (auto& [k, v] : entries(self)) values.push_back(v);
  return rt::array(values);
}
Id dictValueForKey(Id self, SEL, Id key) {
  const StringData* k = key ? native<StringData>(key) : nullptr;
  if (k && !k->utf8.empty() && k->utf8[0] == '@') {
    // "@count" and friends go to NSObject's search, as in Foundation.
    return rt::send<Id>(self, "valueForUndefinedKey:", key);
  }
  return objectForKey(self, nullptr, key);
}
bool dictEqual(Id self, SEL, Id other) {
  DictionaryData* o = native<DictionaryData>(other);
  if (!o || o->entries.size() != entries(self).size()) return false;
  for (auto& [k, v] : entries(self))
    if (!sameObjectValue(dictionaryLookup(*o, k), v)) return false;
  return true;
}
Id dictDescription(Id self, SEL) {
  std::string out = "{";
  for (auto& [k, v] : entries(self)) out += rt::description(k) + " = " + rt::description(v) + "; ";
  if (out.size() > 1) out.pop_back();
  return rt::str(out + "}");
}
Id dictCopy(Id self, SEL) { return rt::dictionary(entries(self)); }
Id dictMutableCopy(Id self, SEL) { return rt::mutableDictionary(entries(self)); }
Id dictNew(Id self, SEL) { return makeDictionary(static_cast<rt::Class>(self), {}); }
Id dictWithCapacity(Id self, SEL, unsigned long) {
  return makeDictionary(static_cast<rt::Class>(self), {});
}
Id dictWithDictionary(Id self, SEL, Id other) {
  DictionaryData* o = native<DictionaryData>(other);
  return makeDictionary(static_cast<rt::Class>(self),
                        o ? o->entries : std::vector<std::pair<Id, Id>>{});
}

// --- NSMutableDictionary
void setObjectForKey(Id self, SEL, Id obj, Id key) {
  if (!key)
    rt::raise("NSInvalidArgumentException",
              "*** -[NSMutableDictionary setObject:forKey:]: key cannot be nil");
  if (!obj)
    rt::raise("NSInvalidArgumentException",
              "*** -[NSMutableDictionary setObject:forKey:]: object cannot be nil (key: " +
                  rt::description(key) + ")");
  for (auto& e : entries(self)) {
    if (sameObjectValue(e.first, key)) {
      e.second = obj;
      return;
    }
  }
  entries(self).emplace_back(key, obj);
}
void removeObjectForKey(Id self, SEL, Id key) {
  std::erase_if(entries(self), [&](const auto& e) { return sameObjectValue(e.first, key); });
}
void dictRemoveAll(Id self, SEL) { entries(self).clear(); }
void dictSetValueForKey(Id self, SEL, Id value, Id key) {
  if (value)
    setObjectForKey(self, nullptr, value, key);
  else
    removeObjectForKey(self, nullptr, key);
}

// --- NSSet
unsigned long setCount(Id self, SEL) { return members(self).size(); }
bool setContains(Id self, SEL, Id obj) {
  for (Id e : members(self))
    if (sameObjectValue(e, obj)) return true;
  return false;
}
Id setMember(Id self, SEL, Id obj) {
  for (Id e : members(self))
    if (sameObjectValue(e, obj)) return e;
  return nullptr;
}
Id allObjects(Id self, SEL) { return rt::array(members(self)); }
Id anyObject(Id self, SEL) { return members(self).empty() ? nullptr : members(self).front(); }
Id setDescription(Id self, SEL) { return rt::str("{(" + joinDescriptions(members(self)) + ")}"); }
Id setWithArray(Id, SEL, Id array) { return rt::set(rt::elements(array)); }

}  // namespace

void registerCollections(Runtime& rtm) {
  FoundationClasses& f = rtm.foundation;
  f.array = ClassBuilder("NSArray")
                .classMethod("array", arrayNew)
                .classMethod("arrayWithArray:", arrayWithArray)
                .method("count", arrayCount)
                .method("objectAtIndex:", objectAtIndex)
                .method("objectAtIndexedSubscript:", objectAtIndex)
                .method("firstObject", firstObject)
                .method("lastObject", lastObject)
                .method("containsObject:", arrayContains)
                .method("indexOfObject:", indexOfObject)
                .method("isEqual:", arrayEqual)
                .method("isEqualToArray:", arrayEqual)
                .method("description", arrayDescription)
                .method("valueForKey:", arrayValueForKey)
                .method("copy", arrayCopy)
                .method("mutableCopy", arrayMutableCopy)
                .build();
  f.mutableArray = ClassBuilder("NSMutableArray", "NSArray")
                       .method("addObject:", addObject)
                       .method("insertObject:atIndex:", insertObjectAtIndex)
                       .method("removeObjectAtIndex:", removeObjectAtIndex)
                       .method("removeObject:", removeObject)
                       .method("removeAllObjects", removeAllObjects)
                       .method("replaceObjectAtIndex:withObject:", replaceObjectAtIndex)
                       .build();
  f.dictionary = ClassBuilder("NSDictionary")
                     .classMethod("dictionary", dictNew)
                     .classMethod("dictionaryWithDictionary:", dictWithDictionary)
                     .method("count", dictCount)
                     .method("objectForKey:", objectForKey)
                     .method("objectForKeyedSubscript:", objectForKey)
                     .method("allKeys", allKeys)
                     .method("allValues", allValues)
                     .method("valueForKey:", dictValueForKey)
                     .method("isEqual:", dictEqual)
                     .method("isEqualToDictionary:", dictEqual)
                     .method("description", dictDescription)
                     .method("copy", dictCopy)
                     .method("mutableCopy", dictMutableCopy)
                     .build();
  f.mutableDictionary = ClassBuilder("NSMutableDictionary", "NSDictionary")
                            .classMethod("dictionaryWithCapacity:", dictWithCapacity)
                            .method("setObject:forKey:", setObjectForKey)
                            .method("setObject:forKeyedSubscript:", setObjectForKey)
                            .method("removeObjectForKey:", removeObjectForKey)
                            .method("removeAllObjects", dictRemoveAll)
                            .method("setValue:forKey:", dictSetValueForKey)
                            .build();
  f.set = ClassBuilder("NSSet")
              .classMethod("setWithArray:", setWithArray)
              .method("count", setCount)
              .method("containsObject:", setContains)
              .method("member:", setMember)
              .method("allObjects", allObjects)
              .method("anyObject", anyObject)
              .method("description", setDescription)
              .build();
}

}  // namespace sim
