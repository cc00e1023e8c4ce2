// NSNumber: booleans, integers and reals with Foundation's conversions.
#include <cmath>
#include <cstdio>
#include <string>

#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

const base::Value& value(Id self) { return native<NumberData>(self)->value; }

long integerValue(Id self, SEL) { return value(self).integerValue().value_or(0); }
int intValue(Id self, SEL) { return int(integerValue(self, nullptr)); }
long long longLongValue(Id self, SEL) { return integerValue(self, nullptr); }
unsigned long unsignedIntegerValue(Id self, SEL) {
  return (unsigned long)integerValue(self, nullptr);
}
bool boolValue(Id self, SEL) { return value(self).boolValue().value_or(false); }
double doubleValue(Id self, SEL) {
  const base::Value& v = value(self);
  if (const double* d = v.asReal()) return *d;
  return double(v.integerValue().value_or(0));
}

std::string text(const base::Value& v) {
  if (const double* d = v.asReal()) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.15g", *d);
    return buf;
  }
  return std::to_string(v.integerValue().value_or(0));
}

Id description(Id self, SEL) { return rt::str(text(value(self))); }
Id stringValue(Id self, SEL) { return description(self, nullptr); }

bool isEqual(Id self, SEL, Id other) {
  const NumberData* o = native<NumberData>(other);
  if (!o) return false;
  const base::Value& a = value(self);
  if (a.isReal() || o->value.isReal())
    return doubleValue(self, nullptr) == doubleValue(other, nullptr);
  return a.integerValue() == o->value.integerValue();
}
unsigned long hash(Id self, SEL) { return (unsigned long)integerValue(self, nullptr); }

Id numberWithInteger(Id, SEL, long v) { return rt::number(v); }
Id numberWithInt(Id, SEL, int v) { return rt::number(v); }
Id numberWithLongLong(Id, SEL, long long v) { return rt::number(long(v)); }
Id numberWithBool(Id, SEL, bool v) { return rt::boolNumber(v); }
Id numberWithDouble(Id, SEL, double v) { return rt::realNumber(v); }

}  // namespace

void registerNumbers(Runtime& rtm) {
  rtm.foundation.number = ClassBuilder("NSNumber")
                              .classMethod("numberWithInteger:", numberWithInteger)
                              .classMethod("numberWithInt:", numberWithInt)
                              .classMethod("numberWithLongLong:", numberWithLongLong)
                              .classMethod("numberWithBool:", numberWithBool)
                              .classMethod("numberWithDouble:", numberWithDouble)
                              .method("integerValue", integerValue)
                              .method("intValue", intValue)
                              .method("longLongValue", longLongValue)
                              .method("unsignedIntegerValue", unsignedIntegerValue)
                              .method("boolValue", boolValue)
                              .method("doubleValue", doubleValue)
                              .method("description", description)
                              .method("stringValue", stringValue)
                              .method("isEqual:", isEqual)
                              .method("hash", hash)
                              .build();
}

}  // namespace sim
