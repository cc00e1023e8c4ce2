// Property-list values to Foundation objects, through the facade's makers, so
// that both backends build them the same way.
#include <utility>
#include <vector>

#include "rt/foundation.hpp"

namespace rt {

Id fromValue(const base::Value& v) {
  using T = base::Value::Type;
  switch (v.type()) {
    case T::Null:
      return null();
    case T::Bool:
      return boolNumber(*v.asBool());
    case T::Integer:
      return number(long(*v.asInteger()));
    case T::Real:
      return realNumber(*v.asReal());
    case T::String:
      return str(*v.asString());
    case T::Data:
      return dataWithBytes(*v.asData());
    case T::Date:
      return dateWithReferenceSeconds(v.asDate()->seconds);
    case T::Array: {
      std::vector<Id> items;
      for (const base::Value& e : *v.asArray()) items.push_back(fromValue(e));
      return array(items);
    }
    case T::Dictionary: {
      std::vector<std::pair<Id, Id>> entries;
      for (const auto& [k, e] : *v.asDictionary()) entries.emplace_back(str(k), fromValue(e));
      return dictionary(entries);
    }
  }
  return nullptr;
}

}  // namespace rt
