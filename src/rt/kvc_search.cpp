#include "rt/kvc_search.hpp"

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

}  // namespace rt
