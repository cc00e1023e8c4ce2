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

}  // namespace hiding
