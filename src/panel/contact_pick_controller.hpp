// QBContactPickController: the searchable list the user picks new secrets
// from. It only reports each pick (it stays open for more) and marks the
// contacts that are secret already; it changes no settings itself.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/contact_info.hpp"
#include "rt/ownership.hpp"
#include "rt/types.hpp"

namespace panel {

using PickItem = host::QBContactInfo::ListItem;

struct QBContactPickController {
  static void registerRuntimeClass();
  // A picker (inset-grouped) offering `items`, in their order; `onPick`
  // receives each chosen username.
  static rt::Strong make(std::vector<PickItem> items,
                         std::function<void(const std::string&)> onPick);
  // The items whose lower-cased displayName, nickname, remark or username
  // contains the trimmed, lower-cased query; all of them for an empty query.
  static std::vector<PickItem> filter(const std::vector<PickItem>& items, const std::string& query);
  // updateSearchResultsForSearchController: with the search text.
  static void updateSearch(rt::Id picker, const std::string& text);
  static const std::vector<PickItem>& filteredItems(rt::Id picker);
  // How many pickers' properties are kept: one per picker alive.
  static std::size_t keptStates();
  // "通讯录 · N 人", or "未找到联系人" when nothing is shown.
  static std::string headerFor(std::size_t shown);
  // The detail of a row that is not yet a secret.
  static std::string detailFor(const std::string& title, const std::string& nickname,
                               const std::string& username);
};

inline constexpr double kPickRowHeight = 64;

}  // namespace panel
