// Foundation values as host objects: the makers and typed readers the system
// uses on strings, numbers, null, arrays, dictionaries, sets, index paths and
// dates. Readers that take any object answer the way the message would (an
// object that does not respond gives the zero value instead of raising).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/value.hpp"
#include "rt/types.hpp"

namespace rt {

// --- NSString
// [NSString stringWithUTF8String:]. Equal strings may be the same object.
Id str(std::string_view utf8);
bool isString(Id obj);
// The UTF-8 text of an NSString; nullopt for nil and for anything else.
std::optional<std::string> asString(Id obj);
// The text of a string of non-zero length; nullopt otherwise.
std::optional<std::string> nonEmptyString(Id obj);
// [NSString lowercaseString] (full Unicode case mapping).
std::string lowercase(std::string_view utf8);
// [a localizedStandardCompare:b]: the user's locale, digits compared by
// numeric value ("item2" < "item10"). -1, 0 or 1.
int localizedStandardCompare(std::string_view a, std::string_view b);

// --- NSNumber
Id number(long value);        // numberWithInteger:
Id boolNumber(bool value);    // numberWithBool:
Id realNumber(double value);  // numberWithDouble:
bool isNumber(Id obj);
// [obj integerValue] / [obj boolValue] / [obj doubleValue] with Foundation's
// rules for numbers and strings; 0 / NO for nil and for objects that do not
// respond.
long integerValue(Id obj);
bool boolValue(Id obj);
double doubleValue(Id obj);
// Whether the object answers integerValue (numbers and strings do).
bool answersIntegerValue(Id obj);

// --- NSNull
Id null();  // [NSNull null]: always the same object
bool isNull(Id obj);

// --- NSArray / NSMutableArray
Id array(const std::vector<Id>& items);
Id mutableArray(const std::vector<Id>& items = {});
bool isArray(Id obj);
bool isMutableArray(Id obj);
// The elements of an NSArray (or the members of an NSSet); empty otherwise.
std::vector<Id> elements(Id obj);
// [obj count]; 0 for nil and objects without count.
long count(Id obj);
// [array objectAtIndex:i]; raises NSRangeException past the end.
Id objectAtIndex(Id array, long index);
void addObject(Id mutableArray, Id obj);

// --- NSDictionary / NSMutableDictionary
Id dictionary(const std::vector<std::pair<Id, Id>>& entries);
Id mutableDictionary(const std::vector<std::pair<Id, Id>>& entries = {});
bool isDictionary(Id obj);
bool isMutableDictionary(Id obj);
Id objectForKey(Id dict, Id key);
Id objectForKey(Id dict, std::string_view key);
void setObjectForKey(Id mutableDict, Id value, Id key);
std::vector<Id> allKeys(Id dict);

// --- NSSet
Id set(const std::vector<Id>& items);
bool isSet(Id obj);
bool containsObject(Id collection, Id obj);  // arrays and sets

// --- NSIndexPath (UIKit's row/section form)
Id indexPath(long row, long section);  // indexPathForRow:inSection:
bool isIndexPath(Id obj);
long indexPathRow(Id indexPath);
long indexPathSection(Id indexPath);

// --- NSDate
Id now();  // [NSDate date]
Id dateWithReferenceSeconds(double seconds);
double referenceSeconds(Id date);  // timeIntervalSinceReferenceDate

// --- NSData
// [NSData dataWithBytes:length:]. The simulation has no NSData and answers
// NSNull: nothing the system stores is data.
Id dataWithBytes(const std::vector<std::uint8_t>& bytes);

// --- Any object
// [obj description]: "(null)" for nil. What "%@" prints.
std::string description(Id obj);
// [a isEqual:b]; two nils are equal.
bool isEqual(Id a, Id b);

// Property-list values to Foundation objects and back. Objects that are not
// property-list types give nullopt (inside a collection they are left out).
// fromValue is portable (value_bridge.cpp): it builds with the makers above.
Id fromValue(const base::Value& value);
std::optional<base::Value> toValue(Id obj);

}  // namespace rt
