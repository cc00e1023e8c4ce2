// The names key-value coding searches for a key, in Foundation's order. Both
// backends' valueForKey: and the system's non-raising probe follow these lists,
// so they cannot drift apart.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "rt/types.hpp"

namespace rt {

// The key with its first letter upper-cased (ASCII only, as Foundation does).
std::string capitalizedKey(std::string_view key);
// valueForKey:'s accessor methods: get<Key>, <key>, is<Key>, _<key>.
std::array<std::string, 4> getterNames(std::string_view key);
// set<Key>:, _set<Key>: for setValue:forKey:.
std::array<std::string, 2> setterNames(std::string_view key);
// The instance variables, tried when accessInstanceVariablesDirectly says so:
// _<key>, _is<Key>, <key>, is<Key>.
std::array<std::string, 4> ivarNames(std::string_view key);

// Everything key-value coding looks for under one key, with the selectors
// resolved: made once per key and thread (selectors live as long as the
// program, so it never goes stale), for the hot paths that probe keys.
struct KeySearch {
  std::array<SEL, 4> getters{};
  std::array<SEL, 2> setters{};
  SEL countOf = nullptr, objectInAtIndex = nullptr, atIndexes = nullptr, enumeratorOf = nullptr,
      memberOf = nullptr;
  std::array<std::string, 4> ivars;
};
const KeySearch& keySearch(std::string_view key);

}  // namespace rt
