// Which records left with the system name a secret. The rules:
//   - An identifier names a username when it is the username, or holds it
//     with no username character (letter, digit, '_', '-', '@') on either
//     side: "msg.session.bob" and "wx:bob/1" name bob; "bobby" and
//     "team@chatroom" do not name bob or team.
//   - A donated interaction names a secret through its intent's conversation
//     identifier, or the sender's or a recipient's person handle or custom
//     identifier.
//   - A searchable item names a secret through its unique or domain
//     identifier, or the username in its attribute set (keywords, title,
//     display name, description); by display name only when its title or
//     display name is exactly the contact's display name.
// Not caught: a donation that names the contact only by display name or
// phone number; an item whose title holds the name among other words ("Bob
// (work)"); a nickname the host shows that is not the contact's display
// name. Caught beyond the secret: a non-secret contact with the same display
// name has its items kept out too.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "rt/types.hpp"

namespace hiding {

struct SecretName {
  std::string username, displayName;
};

bool namesUsername(std::string_view identifier, std::string_view username);

// The identifiers of a donated interaction (INInteraction with a message
// intent) that can name a contact; empty strings left out.
std::vector<std::string> interactionIdentifiers(rt::Id interaction);

struct ItemFields {
  std::string uniqueIdentifier, domainIdentifier;
  std::string title, displayName, description;
  std::vector<std::string> keywords;
};
// What a CSSearchableItem carries that can name a contact.
ItemFields itemFields(rt::Id item);

bool identifiersName(const std::vector<std::string>& identifiers, std::string_view username);
bool itemNames(const ItemFields& item, const SecretName& secret);

// The whole secret set, prepared for matching many records against it. A
// username made only of username characters (nearly every one) can only be
// named by a whole run of such characters, so each run of a record is looked
// up once instead of every secret being searched for in every field; the
// rare other usernames are searched for as `namesUsername` does.
class SecretMatcher {
 public:
  explicit SecretMatcher(std::vector<SecretName> names);
  bool identifierNamesAny(std::string_view identifier) const;
  bool identifiersNameAny(const std::vector<std::string>& identifiers) const;
  bool itemNamesAny(const ItemFields& item) const;
  const std::vector<SecretName>& names() const { return names_; }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  using Set = std::unordered_set<std::string, Hash, std::equal_to<>>;
  std::vector<SecretName> names_;
  Set tokens_, displayNames_;
  std::vector<std::string> others_;
};

}  // namespace hiding
