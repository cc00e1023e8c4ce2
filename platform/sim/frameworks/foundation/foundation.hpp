// The simulated Foundation classes: the registration of the classes with
// their selectors, and the makers and comparisons of their values (the C++
// state behind each kind of value is in runtime/value_data.hpp). Kinder
// than a phone: a value is never freed (no count is kept on it), so keeping
// one as a raw pointer past its turn goes unnoticed here.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/value.hpp"
#include "rt/types.hpp"
#include "sim/runtime/value_data.hpp"

namespace sim {

class Runtime;

// Defines NSObject and the value classes in `rtm` (called once per process).
void registerFoundation(Runtime& rtm);
const FoundationClasses& foundation();

// Lookup of a key in a dictionary's entries with isEqual: semantics (strings
// compared by text without a message).
rt::Id dictionaryLookup(const DictionaryData& d, rt::Id key);
bool sameObjectValue(rt::Id a, rt::Id b);

// Makers that skip interning, for the registration code and the facade.
rt::Id makeString(std::string utf8);
rt::Id makeNumber(base::Value v);
rt::Id makeArray(rt::Class cls, std::vector<rt::Id> items);
rt::Id makeDictionary(rt::Class cls, std::vector<std::pair<rt::Id, rt::Id>> entries);

void registerNSObject(Runtime& rtm);  // with key-value coding
void registerStrings(Runtime& rtm);
void registerNumbers(Runtime& rtm);
void registerCollections(Runtime& rtm);
void registerMiscValues(Runtime& rtm);  // NSNull, NSIndexPath, NSDate

}  // namespace sim
