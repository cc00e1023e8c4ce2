// The Foundation facade on the simulated classes. Makers build objects
// directly; readers that take any object send the message when the object is
// not a Foundation value, so host objects answer as they would on iOS.
#include "rt/foundation.hpp"

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/frameworks/foundation/icu_text.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sys/clock.hpp"

namespace rt {

using sim::native;

Id str(std::string_view utf8) {
  return sim::runtime().internedString(utf8, [&] { return sim::makeString(std::string(utf8)); });
}

bool isString(Id obj) { return native<sim::StringData>(obj) != nullptr; }

std::optional<std::string> asString(Id obj) {
  if (const sim::StringData* s = native<sim::StringData>(obj)) return s->utf8;
  return std::nullopt;
}

std::optional<std::string> nonEmptyString(Id obj) {
  const sim::StringData* s = native<sim::StringData>(obj);
  if (s && !s->utf8.empty()) return s->utf8;
  return std::nullopt;
}

std::string lowercase(std::string_view utf8) { return sim::icuLowercase(utf8); }

int localizedStandardCompare(std::string_view a, std::string_view b) {
  return sim::icuStandardCompare(a, b, sim::currentProcess().device().locale());
}

Id number(long value) {
  sim::Runtime& rtm = sim::runtime();
  if (value >= -1 && value <= 255) {
    Id& slot = rtm.smallIntegers()[value];
    if (!slot) slot = sim::makeNumber(base::Value(value));
    return slot;
  }
  return sim::makeNumber(base::Value(value));
}

Id boolNumber(bool value) {
  Id& slot = sim::runtime().boolObject(value);
  if (!slot) slot = sim::makeNumber(base::Value(value));
  return slot;
}

Id realNumber(double value) { return sim::makeNumber(base::Value(value)); }
bool isNumber(Id obj) { return native<sim::NumberData>(obj) != nullptr; }

bool answersIntegerValue(Id obj) { return obj && respondsTo(obj, sel("integerValue")); }

long integerValue(Id obj) {
  if (const sim::NumberData* n = native<sim::NumberData>(obj))
    return n->value.integerValue().value_or(0);
  if (const sim::StringData* s = native<sim::StringData>(obj))
    return base::integerValueOfString(s->utf8);
  return answersIntegerValue(obj) ? send<long>(obj, "integerValue") : 0;
}

bool boolValue(Id obj) {
  if (const sim::NumberData* n = native<sim::NumberData>(obj))
    return n->value.boolValue().value_or(false);
  if (const sim::StringData* s = native<sim::StringData>(obj))
    return base::boolValueOfString(s->utf8);
  return obj && respondsTo(obj, sel("boolValue")) ? send<bool>(obj, "boolValue") : false;
}

double doubleValue(Id obj) {
  return obj && respondsTo(obj, sel("doubleValue")) ? send<double>(obj, "doubleValue") : 0.0;
}

Id null() {
  Id& slot = sim::runtime().nullObject();
  if (!slot) slot = sim::runtime().allocate(sim::foundation().null);
  return slot;
}

bool isNull(Id obj) { return obj && obj == sim::runtime().nullObject(); }

Id array(const std::vector<Id>& items) { return sim::makeArray(sim::foundation().array, items); }
Id mutableArray(const std::vector<Id>& items) {
  return sim::makeArray(sim::foundation().mutableArray, items);
}
bool isArray(Id obj) { return native<sim::ArrayData>(obj) != nullptr; }
bool isMutableArray(Id obj) {
  return isArray(obj) && isKindOf(obj, sim::foundation().mutableArray);
}

std::vector<Id> elements(Id obj) {
  if (const sim::ArrayData* a = native<sim::ArrayData>(obj)) return a->items;
  if (const sim::SetData* s = native<sim::SetData>(obj)) return s->items;
  return {};
}

long count(Id obj) {
  if (const sim::ArrayData* a = native<sim::ArrayData>(obj)) return long(a->items.size());
  if (const sim::DictionaryData* d = native<sim::DictionaryData>(obj))
    return long(d->entries.size());
  if (const sim::SetData* s = native<sim::SetData>(obj)) return long(s->items.size());
  return obj && respondsTo(obj, sel("count")) ? long(send<unsigned long>(obj, "count")) : 0;
}

Id objectAtIndex(Id arr, long index) {
  return send<Id>(arr, "objectAtIndex:", (unsigned long)index);
}
void addObject(Id arr, Id obj) { send<void>(arr, "addObject:", obj); }

Id dictionary(const std::vector<std::pair<Id, Id>>& entries) {
  return sim::makeDictionary(sim::foundation().dictionary, entries);
}
Id mutableDictionary(const std::vector<std::pair<Id, Id>>& entries) {
  return sim::makeDictionary(sim::foundation().mutableDictionary, entries);
}
bool isDictionary(Id obj) { return native<sim::DictionaryData>(obj) != nullptr; }
bool isMutableDictionary(Id obj) {
  return isDictionary(obj) && isKindOf(obj, sim::foundation().mutableDictionary);
}

Id objectForKey(Id dict, Id key) { return send<Id>(dict, "objectForKey:", key); }
Id objectForKey(Id dict, std::string_view key) { return objectForKey(dict, str(key)); }
void setObjectForKey(Id dict, Id value, Id key) {
  send<void>(dict, "setObject:forKey:", value, key);
}

std::vector<Id> allKeys(Id dict) {
  if (const sim::DictionaryData* d = native<sim::DictionaryData>(dict)) {
    std::vector<Id> keys;
    for (const auto& [k, v] : d->entries) keys.push_back(k);
    return keys;
  }
  return elements(send<Id>(dict, "allKeys"));
}

Id set(const std::vector<Id>& items) {
  Id s = sim::runtime().allocate(sim::foundation().set);
  sim::SetData data;
  for (Id e : items) {
    bool seen = false;
    for (Id m : data.items) seen = seen || sim::sameObjectValue(m, e);
    if (!seen && e) data.items.push_back(e);
  }
  s->native = std::move(data);
  return s;
}

bool isSet(Id obj) { return native<sim::SetData>(obj) != nullptr; }

bool containsObject(Id collection, Id obj) {
  return send<bool>(collection, "containsObject:", obj);
}

Id indexPath(long row, long section) {
  Id& slot = sim::runtime().indexPaths()[{row, section}];
  if (!slot) {
    slot = sim::runtime().allocate(sim::foundation().indexPath);
    slot->native = sim::IndexPathData{row, section};
  }
  return slot;
}

bool isIndexPath(Id obj) { return native<sim::IndexPathData>(obj) != nullptr; }
long indexPathRow(Id ip) { return send<long>(ip, "row"); }
long indexPathSection(Id ip) { return send<long>(ip, "section"); }

Id now() { return dateWithReferenceSeconds(sys::absoluteTime()); }

Id dateWithReferenceSeconds(double seconds) {
  Id d = sim::runtime().allocate(sim::foundation().date);
  d->native = sim::DateData{seconds};
  return d;
}

double referenceSeconds(Id date) { return send<double>(date, "timeIntervalSinceReferenceDate"); }

std::string description(Id obj) {
  if (!obj) return "(null)";
  if (const sim::StringData* s = native<sim::StringData>(obj)) return s->utf8;
  return asString(send<Id>(obj, "description")).value_or("");
}

bool isEqual(Id a, Id b) {
  if (a == b) return true;
  if (!a || !b) return false;
  return send<bool>(a, "isEqual:", b);
}

Id dataWithBytes(const std::vector<std::uint8_t>&) { return null(); }

std::optional<base::Value> toValue(Id obj) {
  if (!obj) return std::nullopt;
  if (const sim::StringData* s = native<sim::StringData>(obj)) return base::Value(s->utf8);
  if (const sim::NumberData* n = native<sim::NumberData>(obj)) return n->value;
  if (const sim::DateData* d = native<sim::DateData>(obj))
    return base::Value(base::Date{d->referenceSeconds});
  if (const sim::ArrayData* a = native<sim::ArrayData>(obj)) {
    base::Array out;
    for (Id e : a->items)
      if (auto v = toValue(e)) out.push_back(std::move(*v));
    return base::Value(std::move(out));
  }
  if (const sim::DictionaryData* d = native<sim::DictionaryData>(obj)) {
    base::Dictionary out;
    for (const auto& [k, e] : d->entries) {
      auto key = asString(k);
      auto v = toValue(e);
      if (key && v) out.emplace_back(*key, std::move(*v));
    }
    return base::Value(std::move(out));
  }
  return std::nullopt;
}

}  // namespace rt
