// QBContactInfo: everything the system asks about a host contact. Which
// contact object belongs to a username, the name and avatar to show, which
// usernames may become secrets, who is logged in, and the sorted list of the
// user's friends for the pickers. Every host call is by name after a
// responds-to test; nothing here throws.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "rt/types.hpp"

namespace host {

struct QBContactInfo {
  // The record the panel and pickers show.
  std::string username;
  std::string nickname;
  std::string remark;
  std::string displayName;
  rt::Id avatar = nullptr;

  static rt::Id contactMgr();
  static rt::Id contactForUsername(std::string_view username);
  // A key-value read that counts only a non-empty string; "" otherwise.
  static std::string stringValue(rt::Id obj, std::string_view key);
  // The first name of the list that gives a non-empty string, by key-value
  // read or by a method of that name; "" when none does.
  static std::string propertyString(rt::Id obj, const std::vector<std::string_view>& names);
  static std::string displayNameFromContact(rt::Id contact, std::string_view username);
  static std::string displayNameForUsername(std::string_view username);
  // The name to show, or nothing when no record of the username is found
  // yet (the host has not loaded it): a caller can tell a name that is only
  // the username for now from one that is the username for good.
  static std::optional<std::string> knownDisplayName(std::string_view username);
  static rt::Id asUIImage(rt::Id obj);
  static rt::Id avatarForUsername(std::string_view username, rt::Id contact);
  static rt::Id placeholderAvatar(std::string_view text);
  static void fillInfo(QBContactInfo& info, rt::Id contact, std::string_view username);
  static QBContactInfo infoForUsername(std::string_view username);
  static bool isSelectableFriendUsername(rt::Id obj);
  static bool isSelectableFriendUsername(std::string_view username);
  static std::string selfUsername();
  static void appendContacts(rt::Id obj, std::vector<rt::Id>& into);
  static std::vector<rt::Id> rawNormalContacts();

  struct ListItem {
    std::string username, displayName, nickname, remark;
    bool operator==(const ListItem&) const = default;
  };
  static std::vector<ListItem> listNormalContactItems();
};

// The fixed lists, in the order they are tried.
inline const std::vector<std::string_view> kLookupSelectors = {
    "getContactByName:", "getContactByNameFromCache:", "getContactByNameFromDB:"};
inline const std::vector<std::string_view> kRemarkKeys = {"m_nsRemark", "m_nsRemarkName", "remark"};
inline const std::vector<std::string_view> kNicknameKeys = {"m_nsNickName", "nickname", "nickName"};
inline const std::vector<std::string_view> kAliasKeys = {"m_nsAliasName", "m_nsAlias", "aliasName"};
// The short lists differ on purpose: used for the lookup test and database re-reads.
inline const std::vector<std::string_view> kRemarkKeysShort = {"m_nsRemark", "m_nsRemarkName"};
inline const std::vector<std::string_view> kNicknameKeysShort = {"m_nsNickName", "nickName"};
inline const std::vector<std::string_view> kSelfSelectors = {"getSelfContact", "getSelfUserName"};
inline constexpr unsigned kContactListTypes[] = {1, 0xFFFFFFFFu, 3, 0, 65535};
inline const std::vector<std::string_view> kDataLogicListSelectors = {"getAllNormalContact",
                                                                      "getFavourContactArray"};
inline const std::vector<std::string_view> kReservedUsernames = {"weixin",
                                                                 "filehelper",
                                                                 "fmessage",
                                                                 "notifymessage",
                                                                 "floatbottle",
                                                                 "medianote",
                                                                 "newsapp",
                                                                 "officialaccounts",
                                                                 "brandsessionholder",
                                                                 "brandservicesessionholder",
                                                                 "notification_messages",
                                                                 "conversation_folder"};

}  // namespace host
