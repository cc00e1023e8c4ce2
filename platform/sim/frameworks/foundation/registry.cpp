// Registration of the simulated Foundation and the shared helpers of its
// classes.
#include <cstdlib>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {

void registerFoundation(Runtime& rtm) {
  registerNSObject(rtm);
  registerStrings(rtm);
  registerNumbers(rtm);
  registerCollections(rtm);
  registerMiscValues(rtm);
}

const FoundationClasses& foundation() { return runtime().foundation; }

bool sameObjectValue(rt::Id a, rt::Id b) {
  if (a == b) return true;
  if (!a || !b) return false;
  const StringData* sa = native<StringData>(a);
  const StringData* sb = native<StringData>(b);
  if (sa || sb) return sa && sb && sa->utf8 == sb->utf8;
  return rt::send<bool>(a, "isEqual:", b);
}

rt::Id dictionaryLookup(const DictionaryData& d, rt::Id key) {
  // sameObjectValue(k, key) for each entry, with the key's own string read once.
  const StringData* sk = key ? native<StringData>(key) : nullptr;
  for (const auto& [k, v] : d.entries) {
    if (k == key) return v;
    if (!k || !key) continue;
    const StringData* s = native<StringData>(k);
    if (s || sk) {
      if (s && sk && s->utf8 == sk->utf8) return v;
      continue;
    }
    if (rt::send<bool>(k, "isEqual:", key)) return v;
  }
  return nullptr;
}

rt::Id makeString(std::string utf8) {
  rt::Id s = runtime().allocate(foundation().string);
  s->native = StringData{std::move(utf8)};
  return s;
}

rt::Id makeNumber(base::Value v) {
  rt::Id n = runtime().allocate(foundation().number);
  n->native = NumberData{std::move(v)};
  return n;
}

rt::Id makeArray(rt::Class cls, std::vector<rt::Id> items) {
  rt::Id a = runtime().allocate(cls);
  a->native = ArrayData{std::move(items)};
  return a;
}

rt::Id makeDictionary(rt::Class cls, std::vector<std::pair<rt::Id, rt::Id>> entries) {
  rt::Id d = runtime().allocate(cls);
  d->native = DictionaryData{std::move(entries)};
  return d;
}

}  // namespace sim
