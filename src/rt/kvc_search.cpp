#include "rt/kvc_search.hpp"

#include <functional>
#include <unordered_map>

#include "rt/runtime.hpp"

namespace rt {

std::string capitalizedKey(std::string_view key) {
  std::string k(key);
  if (!k.empty() && k[0] >= 'a' && k[0] <= 'z') k[0] = char(k[0] - 'a' + 'A');
  return k;
}

std::array<std::string, 4> getterNames(std::string_view key) {
  std::string cap = capitalizedKey(key);
  return {"get" + cap, std::string(key), "is" + cap, "_" + std::string(key)};
}

std::array<std::string, 2> setterNames(std::string_view key) {
  std::string cap = capitalizedKey(key);
  return {"set" + cap + ":", "_set" + cap + ":"};
}

std::array<std::string, 4> ivarNames(std::string_view key) {
  std::string cap = capitalizedKey(key);
  return {"_" + std::string(key), "_is" + cap, std::string(key), "is" + cap};
}

namespace {

KeySearch makeSearch(std::string_view key) {
  KeySearch k;
  std::array<std::string, 4> getters = getterNames(key);
  for (std::size_t i = 0; i < getters.size(); ++i) k.getters[i] = sel(getters[i]);
  std::array<std::string, 2> setters = setterNames(key);
  for (std::size_t i = 0; i < setters.size(); ++i) k.setters[i] = sel(setters[i]);
  std::string cap = capitalizedKey(key);
  k.countOf = sel("countOf" + cap);
  k.objectInAtIndex = sel("objectIn" + cap + "AtIndex:");
  k.atIndexes = sel(std::string(key) + "AtIndexes:");
  k.enumeratorOf = sel("enumeratorOf" + cap);
  k.memberOf = sel("memberOf" + cap + ":");
  k.ivars = ivarNames(key);
  return k;
}

struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

}  // namespace

const KeySearch& keySearch(std::string_view key) {
  thread_local std::unordered_map<std::string, KeySearch, StringHash, std::equal_to<>> searches;
  auto it = searches.find(key);
  if (it == searches.end()) it = searches.emplace(std::string(key), makeSearch(key)).first;
  return it->second;
}

}  // namespace rt
