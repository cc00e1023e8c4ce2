#include "hiding/outside_match.hpp"

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace hiding {
namespace {

bool usernameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || c == '@';
}

std::string text(rt::Id s) { return rt::asString(s).value_or(""); }

// Reads `key` of `obj` when it answers it: the records come from the host's
// own code, which may build them with any class that stands in.
rt::Id get(rt::Id obj, const char* key) {
  return obj && rt::respondsTo(obj, rt::sel(key)) ? rt::send<rt::Id>(obj, key) : nullptr;
}

void addPerson(std::vector<std::string>& out, rt::Id person) {
  for (std::string s : {text(get(get(person, "personHandle"), "value")),
                        text(get(person, "customIdentifier"))})
    if (!s.empty()) out.push_back(std::move(s));
}

}  // namespace

bool namesUsername(std::string_view identifier, std::string_view username) {
  if (username.empty()) return false;
  for (std::size_t at = identifier.find(username); at != std::string_view::npos;
       at = identifier.find(username, at + 1)) {
    std::size_t end = at + username.size();
    bool before = at == 0 || !usernameChar(identifier[at - 1]);
    bool after = end == identifier.size() || !usernameChar(identifier[end]);
    if (before && after) return true;
  }
  return false;
}

std::vector<std::string> interactionIdentifiers(rt::Id interaction) {
  std::vector<std::string> out;
  rt::Id intent = get(interaction, "intent");
  if (std::string c = text(get(intent, "conversationIdentifier")); !c.empty()) out.push_back(c);
  addPerson(out, get(intent, "sender"));
  for (rt::Id r : rt::elements(get(intent, "recipients"))) addPerson(out, r);
  return out;
}

ItemFields itemFields(rt::Id item) {
  ItemFields f;
  f.uniqueIdentifier = text(get(item, "uniqueIdentifier"));
  f.domainIdentifier = text(get(item, "domainIdentifier"));
  rt::Id a = get(item, "attributeSet");
  f.title = text(get(a, "title"));
  f.displayName = text(get(a, "displayName"));
  f.description = text(get(a, "contentDescription"));
  for (rt::Id k : rt::elements(get(a, "keywords")))
    if (std::string s = text(k); !s.empty()) f.keywords.push_back(s);
  return f;
}

bool identifiersName(const std::vector<std::string>& identifiers, std::string_view username) {
  for (const std::string& i : identifiers)
    if (namesUsername(i, username)) return true;
  return false;
}

SecretMatcher::SecretMatcher(std::vector<SecretName> names) : names_(std::move(names)) {
  for (const SecretName& n : names_) {
    if (n.username.empty()) continue;
    bool token = true;
    for (char c : n.username) token = token && usernameChar(c);
    if (token)
      tokens_.insert(n.username);
    else
      others_.push_back(n.username);
    if (!n.displayName.empty()) displayNames_.insert(n.displayName);
  }
}

bool SecretMatcher::identifierNamesAny(std::string_view identifier) const {
  if (!tokens_.empty()) {
    for (std::size_t i = 0; i < identifier.size();) {
      if (!usernameChar(identifier[i])) {
        ++i;
        continue;
      }
      std::size_t end = i;
      while (end < identifier.size() && usernameChar(identifier[end])) ++end;
      if (tokens_.find(identifier.substr(i, end - i)) != tokens_.end()) return true;
      i = end;
    }
  }
  for (const std::string& u : others_)
    if (namesUsername(identifier, u)) return true;
  return false;
}

bool SecretMatcher::identifiersNameAny(const std::vector<std::string>& identifiers) const {
  for (const std::string& i : identifiers)
    if (identifierNamesAny(i)) return true;
  return false;
}

bool SecretMatcher::itemNamesAny(const ItemFields& item) const {
  for (const std::string* f : {&item.uniqueIdentifier, &item.domainIdentifier, &item.title,
                               &item.displayName, &item.description})
    if (identifierNamesAny(*f)) return true;
  if (identifiersNameAny(item.keywords)) return true;
  auto isDisplayName = [&](const std::string& s) {
    return !s.empty() && displayNames_.find(s) != displayNames_.end();
  };
  return isDisplayName(item.title) || isDisplayName(item.displayName);
}

bool itemNames(const ItemFields& item, const SecretName& secret) {
  if (identifiersName({item.uniqueIdentifier, item.domainIdentifier, item.title, item.displayName,
                       item.description},
                      secret.username) ||
      identifiersName(item.keywords, secret.username))
    return true;
  const std::string& d = secret.displayName;
  return !d.empty() && (item.title == d || item.displayName == d);
}

}  // namespace hiding
