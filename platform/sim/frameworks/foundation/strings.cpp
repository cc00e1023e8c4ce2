// NSString: immutable UTF-8 text with Foundation's number readings, case
// mapping and comparison. Lengths count UTF-16 units, as NSString does.
#include <cstdlib>
#include <string>

#include "base/utf8.hpp"
#include "base/value.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/frameworks/foundation/icu_text.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

const std::string& text(Id self) { return native<StringData>(self)->utf8; }

std::string argText(Id arg, const char* selector) {
  auto s = rt::asString(arg);
  if (!s)
    rt::raise("NSInvalidArgumentException",
              std::string("-[NSString ") + selector + "]: nil argument");
  return *s;
}

unsigned long utf16Length(const std::string& s) {
  unsigned long n = 0;
  for (std::size_t i = 0; i < s.size();) n += base::decodeUtf8(s, i) > 0xFFFF ? 2 : 1;
  return n;
}

unsigned long length(Id self, SEL) { return utf16Length(text(self)); }
bool isEqualToString(Id self, SEL, Id other) {
  const StringData* o = native<StringData>(other);
  return o && o->utf8 == text(self);
}
bool isEqual(Id self, SEL, Id other) {
  return self == other || isEqualToString(self, nullptr, other);
}
unsigned long hash(Id self, SEL) { return std::hash<std::string>()(text(self)); }
Id description(Id self, SEL) { return self; }
long integerValue(Id self, SEL) { return base::integerValueOfString(text(self)); }
int intValue(Id self, SEL) {
  long v = integerValue(self, nullptr);
  return v > INT32_MAX ? INT32_MAX : v < INT32_MIN ? INT32_MIN : int(v);
}
long long longLongValue(Id self, SEL) { return integerValue(self, nullptr); }
bool boolValue(Id self, SEL) { return base::boolValueOfString(text(self)); }
double doubleValue(Id self, SEL) { return std::strtod(text(self).c_str(), nullptr); }
const char* utf8String(Id self, SEL) { return text(self).c_str(); }
Id lowercaseString(Id self, SEL) { return rt::str(icuLowercase(text(self))); }
Id uppercaseString(Id self, SEL) { return rt::str(icuUppercase(text(self))); }
bool containsString(Id self, SEL, Id other) {
  return base::contains(text(self), argText(other, "containsString:"));
}
bool hasPrefix(Id self, SEL, Id other) {
  std::string p = argText(other, "hasPrefix:");
  return !p.empty() && base::startsWith(text(self), p);
}
bool hasSuffix(Id self, SEL, Id other) {
  std::string p = argText(other, "hasSuffix:");
  const std::string& t = text(self);
  return !p.empty() && t.size() >= p.size() && t.compare(t.size() - p.size(), p.size(), p) == 0;
}
long localizedStandardCompare(Id self, SEL, Id other) {
  return rt::localizedStandardCompare(text(self), argText(other, "localizedStandardCompare:"));
}
Id stringWithUTF8String(Id, SEL, const char* s) {
  if (!s)
    rt::raise("NSInvalidArgumentException", "+[NSString stringWithUTF8String:]: NULL cString");
  return rt::str(s);
}
Id emptyString(Id, SEL) { return rt::str(""); }

}  // namespace

void registerStrings(Runtime& rtm) {
  rtm.foundation.string = ClassBuilder("NSString")
                              .classMethod("stringWithUTF8String:", stringWithUTF8String)
                              .classMethod("string", emptyString)
                              .method("length", length)
                              .method("isEqualToString:", isEqualToString)
                              .method("isEqual:", isEqual)
                              .method("hash", hash)
                              .method("description", description)
                              .method("integerValue", integerValue)
                              .method("intValue", intValue)
                              .method("longLongValue", longLongValue)
                              .method("boolValue", boolValue)
                              .method("doubleValue", doubleValue)
                              .method("UTF8String", utf8String)
                              .method("lowercaseString", lowercaseString)
                              .method("uppercaseString", uppercaseString)
                              .method("containsString:", containsString)
                              .method("hasPrefix:", hasPrefix)
                              .method("hasSuffix:", hasSuffix)
                              .method("localizedStandardCompare:", localizedStandardCompare)
                              .build();
}

}  // namespace sim
