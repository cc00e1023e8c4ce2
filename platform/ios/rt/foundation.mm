// Foundation values on iOS: the makers are the class methods their
// declarations name, the readers type-check with isKindOfClass: and
// respondsToSelector: before sending, and the calls that can raise turn the
// NSException into rt::Exception.
#include "rt/foundation.hpp"

#import <Foundation/Foundation.h>
#import <UIKit/UIKit.h>

#include <cstring>

#include "bridge.h"

namespace rt {
namespace {

using ios::handle;
using ios::object;

NSArray* nsArray(const std::vector<Id>& items) {
  NSMutableArray* a = [NSMutableArray arrayWithCapacity:items.size()];
  for (Id e : items)
    if (e) [a addObject:object(e)];  // a Foundation array cannot hold nil
  return a;
}

std::vector<Id> itemsOf(NSArray* a) {
  std::vector<Id> out;
  NSUInteger n = a.count;
  out.reserve(n);
  for (NSUInteger i = 0; i < n; ++i) out.push_back(handle([a objectAtIndex:i]));
  return out;
}

NSMutableDictionary* nsDictionary(const std::vector<std::pair<Id, Id>>& entries) {
  NSMutableDictionary* d = [NSMutableDictionary dictionaryWithCapacity:entries.size()];
  for (const auto& [k, v] : entries)
    if (k && v) [d setObject:object(v) forKey:object(k)];
  return d;
}

bool kindOf(Id obj, ::Class c) { return obj && [object(obj) isKindOfClass:c]; }
bool answers(Id obj, ::SEL s) {
  return obj && class_respondsToSelector(object_getClass(object(obj)), s);
}

bool isBooleanNumber(NSNumber* n) {
  return n == [NSNumber numberWithBool:YES] || n == [NSNumber numberWithBool:NO];
}

}  // namespace

// --- NSString
Id str(std::string_view utf8) { return handle(ios::ns(utf8)); }
bool isString(Id obj) { return kindOf(obj, [NSString class]); }
std::optional<std::string> asString(Id obj) {
  if (!isString(obj)) return std::nullopt;
  return ios::utf8((NSString*)object(obj));
}
std::optional<std::string> nonEmptyString(Id obj) {
  if (!isString(obj) || ((NSString*)object(obj)).length == 0) return std::nullopt;
  return ios::utf8((NSString*)object(obj));
}
std::string lowercase(std::string_view utf8) { return ios::utf8(ios::ns(utf8).lowercaseString); }
int localizedStandardCompare(std::string_view a, std::string_view b) {
  return int([ios::ns(a) localizedStandardCompare:ios::ns(b)]);
}

// --- NSNumber
Id number(long value) { return handle([NSNumber numberWithInteger:value]); }
Id boolNumber(bool value) { return handle([NSNumber numberWithBool:value]); }
Id realNumber(double value) { return handle([NSNumber numberWithDouble:value]); }
bool isNumber(Id obj) { return kindOf(obj, [NSNumber class]); }
bool answersIntegerValue(Id obj) { return answers(obj, @selector(integerValue)); }
long integerValue(Id obj) {
  return answersIntegerValue(obj) ? [(NSNumber*)object(obj) integerValue] : 0;
}
bool boolValue(Id obj) {
  return answers(obj, @selector(boolValue)) && [(NSNumber*)object(obj) boolValue];
}
double doubleValue(Id obj) {
  return answers(obj, @selector(doubleValue)) ? [(NSNumber*)object(obj) doubleValue] : 0;
}

// --- NSNull
Id null() { return handle([NSNull null]); }
bool isNull(Id obj) { return obj && object(obj) == [NSNull null]; }

// --- NSArray / NSMutableArray
Id array(const std::vector<Id>& items) { return handle([NSArray arrayWithArray:nsArray(items)]); }
Id mutableArray(const std::vector<Id>& items) { return handle(nsArray(items)); }
bool isArray(Id obj) { return kindOf(obj, [NSArray class]); }
bool isMutableArray(Id obj) { return kindOf(obj, [NSMutableArray class]); }
std::vector<Id> elements(Id obj) {
  if (isArray(obj)) return itemsOf((NSArray*)object(obj));
  if (isSet(obj)) return itemsOf(((NSSet*)object(obj)).allObjects);
  return {};
}
long count(Id obj) {
  return answers(obj, @selector(count)) ? long([(NSArray*)object(obj) count]) : 0;
}
Id objectAtIndex(Id arr, long index) {
  if (!arr) return nullptr;
  return ios::translating(
      [&] { return handle([(NSArray*)object(arr) objectAtIndex:NSUInteger(index)]); });
}
void addObject(Id arr, Id obj) {
  if (arr) ios::translating([&] { [(NSMutableArray*)object(arr) addObject:object(obj)]; });
}

// --- NSDictionary / NSMutableDictionary
Id dictionary(const std::vector<std::pair<Id, Id>>& entries) {
  return handle([NSDictionary dictionaryWithDictionary:nsDictionary(entries)]);
}
Id mutableDictionary(const std::vector<std::pair<Id, Id>>& entries) {
  return handle(nsDictionary(entries));
}
bool isDictionary(Id obj) { return kindOf(obj, [NSDictionary class]); }
bool isMutableDictionary(Id obj) { return kindOf(obj, [NSMutableDictionary class]); }
Id objectForKey(Id dict, Id key) {
  if (!dict) return nullptr;
  return ios::translating(
      [&] { return handle([(NSDictionary*)object(dict) objectForKey:object(key)]); });
}
Id objectForKey(Id dict, std::string_view key) { return objectForKey(dict, str(key)); }
void setObjectForKey(Id dict, Id value, Id key) {
  if (dict)
    ios::translating(
        [&] { [(NSMutableDictionary*)object(dict) setObject:object(value) forKey:object(key)]; });
}
std::vector<Id> allKeys(Id dict) {
  if (!dict) return {};
  return ios::translating([&] { return itemsOf([(NSDictionary*)object(dict) allKeys]); });
}

// --- NSSet
Id set(const std::vector<Id>& items) { return handle([NSSet setWithArray:nsArray(items)]); }
bool isSet(Id obj) { return kindOf(obj, [NSSet class]); }
bool containsObject(Id collection, Id obj) {
  if (!collection) return false;
  return ios::translating(
      [&] { return bool([(NSArray*)object(collection) containsObject:object(obj)]); });
}

// --- NSIndexPath
Id indexPath(long row, long section) {
  return handle([NSIndexPath indexPathForRow:row inSection:section]);
}
bool isIndexPath(Id obj) { return kindOf(obj, [NSIndexPath class]); }
long indexPathRow(Id ip) {
  if (!ip) return 0;
  return ios::translating([&] { return long([(NSIndexPath*)object(ip) row]); });
}
long indexPathSection(Id ip) {
  if (!ip) return 0;
  return ios::translating([&] { return long([(NSIndexPath*)object(ip) section]); });
}

// --- NSDate
Id now() { return handle([NSDate date]); }
Id dateWithReferenceSeconds(double seconds) {
  return handle([NSDate dateWithTimeIntervalSinceReferenceDate:seconds]);
}
double referenceSeconds(Id date) {
  if (!date) return 0;
  return ios::translating([&] { return [(NSDate*)object(date) timeIntervalSinceReferenceDate]; });
}

// --- Any object
std::string description(Id obj) {
  if (!obj) return "(null)";
  return ios::translating([&] { return ios::utf8([object(obj) description]); });
}
bool isEqual(Id a, Id b) {
  if (a == b) return true;
  if (!a || !b) return false;
  return ios::translating([&] { return bool([object(a) isEqual:object(b)]); });
}

// --- Property-list values
Id dataWithBytes(const std::vector<std::uint8_t>& bytes) {
  return handle([NSData dataWithBytes:bytes.data() length:bytes.size()]);
}

std::optional<base::Value> toValue(Id obj) {
  if (!obj) return std::nullopt;
  if (auto s = asString(obj)) return base::Value(std::move(*s));
  if (isNumber(obj)) {
    NSNumber* n = (NSNumber*)object(obj);
    if (isBooleanNumber(n)) return base::Value(bool(n.boolValue));
    const char* type = n.objCType;
    if (type && (std::strcmp(type, "f") == 0 || std::strcmp(type, "d") == 0))
      return base::Value(n.doubleValue);
    return base::Value(static_cast<long long>(n.longLongValue));
  }
  if (kindOf(obj, [NSDate class])) return base::Value(base::Date{referenceSeconds(obj)});
  if (kindOf(obj, [NSData class])) {
    NSData* d = (NSData*)object(obj);
    const auto* bytes = static_cast<const std::uint8_t*>(d.bytes);
    return base::Value(base::Data(bytes, bytes + d.length));
  }
  if (isArray(obj)) {
    base::Array out;
    for (Id e : elements(obj))
      if (auto v = toValue(e)) out.push_back(std::move(*v));
    return base::Value(std::move(out));
  }
  if (isDictionary(obj)) {
    base::Dictionary out;
    for (Id k : allKeys(obj)) {
      auto key = asString(k);
      auto v = toValue(objectForKey(obj, k));
      if (key && v) out.emplace_back(*key, std::move(*v));
    }
    return base::Value(std::move(out));
  }
  return std::nullopt;
}

}  // namespace rt
