// The donation and index filters, what they remember of what passed, and the
// clean-up when a contact becomes secret. Deleting is by what is known to
// name the contact: the donations' group identifiers, the items' unique
// identifiers. When something may have been left that this process did not
// see (a donation without a group, a contact with nothing seen), it falls
// back to the host's search domains, then to everything of this app's, once;
// the system learns the rest again from use, the host indexes it again.
#include "hiding/outside_hooks.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/config.hpp"
#include "hiding/outside_match.hpp"
#include "hiding/session_hooks.hpp"
#include "host/contact_info.hpp"
#include "host/hook.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/files.hpp"
#include "sys/log.hpp"
#include "sys/process_state.hpp"
#include "sys/user_notifications.hpp"

namespace hiding {
namespace {

using rt::Id;
using rt::SEL;

struct OutsideState {
  bool installed = false;
  host::Hook<void(Id)> donate;
  host::Hook<void(Id, Id)> indexItems;
  // The host may donate and index from any thread; the rest is main-thread.
  std::mutex mutex;
  // Replaced whole on the main thread; the filters keep the one they took.
  std::shared_ptr<const SecretMatcher> matcher = std::make_shared<SecretMatcher>(
      std::vector<SecretName>{});
  std::map<std::string, std::vector<std::string>> groups;  // group → identifiers it named
  bool ungrouped = false;  // a donation without a group passed
  std::vector<ItemFields> indexed;
  std::set<std::string> domains;
  std::unordered_set<std::string> cleanedFor;  // the secret set last cleaned for
  std::unordered_set<std::string> unknownNames;  // secrets no contact was found for yet
};

OutsideState& st() { return sys::state<OutsideState>(); }

std::shared_ptr<const SecretMatcher> matcher() {
  std::lock_guard lock(st().mutex);
  return st().matcher;
}

std::string outsideFile() { return sys::documentsDirectory() + kOutsideFile; }

std::unordered_set<std::string> readCleanedFor() {
  std::unordered_set<std::string> names;
  std::optional<base::Value> file = sys::readPropertyList(outsideFile());
  const base::Value* list = file ? file->find("cleared") : nullptr;
  if (list && list->isArray())
    for (const base::Value& v : *list->asArray())
      if (v.isString()) names.insert(*v.asString());
  return names;
}

void writeCleanedFor(const std::unordered_set<std::string>& names) {
  base::Array list(names.begin(), names.end());
  std::sort(list.begin(), list.end(),
            [](const base::Value& a, const base::Value& b) { return *a.asString() < *b.asString(); });
  sys::writePropertyList(outsideFile(), base::Value(base::Dictionary{{"cleared", list}}));
}

bool itemNamesAny(const ItemFields& item, const std::vector<SecretName>& names) {
  for (const SecretName& s : names)
    if (itemNames(item, s)) return true;
  return false;
}

void deleteDonations(const std::vector<SecretName>& added) {
  OutsideState& s = st();
  rt::Class cls = rt::getClass("INInteraction");
  if (!cls) return;
  std::vector<std::string> groups;
  bool allKnown = !s.ungrouped;
  {
    std::lock_guard lock(s.mutex);
    for (const SecretName& n : added) {
      bool seen = false;
      for (const auto& [group, ids] : s.groups)
        if (identifiersName(ids, n.username)) {
          seen = true;
          if (std::find(groups.begin(), groups.end(), group) == groups.end())
            groups.push_back(group);
        }
      allKnown = allKnown && seen;
    }
    if (allKnown)
      for (const std::string& g : groups) s.groups.erase(g);
    else
      s.groups.clear(), s.ungrouped = false;
  }
  if (allKnown) {
    for (const std::string& g : groups)
      rt::send<void>(cls, "deleteInteractionsWithGroupIdentifier:completion:", rt::str(g),
                     Id{nullptr});
  } else {
    rt::send<void>(cls, "deleteAllInteractionsWithCompletion:", Id{nullptr});
  }
}

void deleteItems(const std::vector<SecretName>& added) {
  OutsideState& s = st();
  rt::Class cls = rt::getClass("CSSearchableIndex");
  if (!cls) return;
  Id index = rt::send<Id>(cls, "defaultSearchableIndex");
  std::vector<Id> ids;
  std::vector<Id> domains;
  bool allKnown = true;
  {
    std::lock_guard lock(s.mutex);
    for (const SecretName& n : added) {
      bool seen = false;
      for (const ItemFields& item : s.indexed)
        if (itemNames(item, n)) seen = true, ids.push_back(rt::str(item.uniqueIdentifier));
      allKnown = allKnown && seen;
    }
    std::erase_if(s.indexed, [&](const ItemFields& i) { return itemNamesAny(i, added); });
    if (!allKnown) {
      for (const std::string& d : s.domains) domains.push_back(rt::str(d));
      s.indexed.clear(), s.domains.clear();
    }
  }
  if (allKnown)
    rt::send<void>(index, "deleteSearchableItemsWithIdentifiers:completionHandler:",
                   rt::array(ids), Id{nullptr});
  else if (!domains.empty())
    rt::send<void>(index, "deleteSearchableItemsWithDomainIdentifiers:completionHandler:",
                   rt::array(domains), Id{nullptr});
  else
    rt::send<void>(index, "deleteAllSearchableItemsWithCompletionHandler:", Id{nullptr});
}

// The names the filters match against, for `secrets`: a name already known
// is kept; one whose contact the host had not loaded (so only its username)
// is looked up again. When the set itself changes every name that is only
// the username is looked up again too, as a contact may have gained a name
// since; a refresh that only locks or reveals looks up none of those.
std::vector<SecretName> namesFor(const std::unordered_set<std::string>& secrets,
                                 const SecretMatcher& current, bool setChanged,
                                 std::unordered_set<std::string>& unknown) {
  std::unordered_map<std::string_view, const SecretName*> had;
  for (const SecretName& n : current.names()) had.emplace(n.username, &n);
  std::unordered_set<std::string> stillUnknown;
  std::vector<SecretName> names;
  names.reserve(secrets.size());
  for (const std::string& u : secrets) {
    auto it = had.find(u);
    bool keep = it != had.end() && !unknown.count(u) &&
                !(setChanged && it->second->displayName == u);
    if (keep) {
      names.push_back(*it->second);
      continue;
    }
    std::optional<std::string> name = host::QBContactInfo::knownDisplayName(u);
    if (!name) stillUnknown.insert(u);
    names.push_back({u, name.value_or(u)});
  }
  unknown = std::move(stillUnknown);
  return names;
}

// On the main thread, after every refresh of the filter: the names the
// filters match against, and the clean-up for each contact new to the set.
void secretsRefreshed(const std::unordered_set<std::string>& secrets) {
  OutsideState& s = st();
  std::shared_ptr<const SecretMatcher> current = matcher();
  bool setChanged = secrets.size() != current->names().size();
  for (const SecretName& n : current->names())
    setChanged = setChanged || !secrets.count(n.username);
  if (!setChanged && s.unknownNames.empty() && secrets == s.cleanedFor) return;
  std::vector<SecretName> names = namesFor(secrets, *current, setChanged, s.unknownNames);
  std::vector<SecretName> added;
  for (const SecretName& n : names)
    if (!s.cleanedFor.count(n.username)) added.push_back(n);
  auto prepared = std::make_shared<const SecretMatcher>(std::move(names));
  {
    std::lock_guard lock(s.mutex);
    s.matcher = std::move(prepared);
  }
  if (secrets == s.cleanedFor) return;
  host::guarded("[QB] outside clean ex: %@", [&] {
    if (!added.empty()) {
      deleteDonations(added);
      deleteItems(added);
      sys::log("[QB] outside records cleaned for %ld new secret(s)", long(added.size()));
    }
    s.cleanedFor = secrets;
    writeCleanedFor(secrets);
  });
}


// -[INInteraction donateInteractionWithCompletion:]
void donate(Id self, SEL cmd, Id completion) {
  st().donate.run(
      "[QB] donate ex: %@",
      [&](auto& original) {
        std::vector<std::string> ids = interactionIdentifiers(self);
        if (matcher()->identifiersNameAny(ids)) {
          sys::callCompletionLater(completion);  // as if the system took it
          return;
        }
        std::string group = rt::asString(rt::send<Id>(self, "groupIdentifier")).value_or("");
        {
          std::lock_guard lock(st().mutex);
          if (group.empty()) {
            st().ungrouped = true;
          } else {
            std::vector<std::string>& seen = st().groups[group];
            for (std::string& i : ids)
              if (std::find(seen.begin(), seen.end(), i) == seen.end()) seen.push_back(i);
          }
        }
        original(completion);
      },
      self, cmd, completion);
}

// -[CSSearchableIndex indexSearchableItems:completionHandler:]
void indexItems(Id self, SEL cmd, Id items, Id completion) {
  st().indexItems.run(
      "[QB] index ex: %@",
      [&](auto& original) { original(QBOutsideHooks::itemsWithoutSecrets(items), completion); },
      self, cmd, items, completion);
}

}  // namespace

bool QBOutsideHooks::donationNamesSecret(Id interaction) {
  return matcher()->identifiersNameAny(interactionIdentifiers(interaction));
}

Id QBOutsideHooks::itemsWithoutSecrets(Id items) {
  std::shared_ptr<const SecretMatcher> names = matcher();
  std::vector<Id> kept;
  std::vector<ItemFields> keptFields;
  std::vector<Id> all = rt::elements(items);
  for (Id item : all) {
    ItemFields f = itemFields(item);
    if (names->itemNamesAny(f)) continue;
    kept.push_back(item);
    keptFields.push_back(std::move(f));
  }
  {
    OutsideState& s = st();
    std::lock_guard lock(s.mutex);
    for (ItemFields& f : keptFields) {
      if (!f.domainIdentifier.empty()) s.domains.insert(f.domainIdentifier);
      std::erase_if(s.indexed,
                    [&](const ItemFields& i) { return i.uniqueIdentifier == f.uniqueIdentifier; });
      s.indexed.push_back(std::move(f));
    }
  }
  return kept.size() == all.size() ? items : rt::array(kept);
}

void QBOutsideHooks::install() {
  OutsideState& s = st();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] outside install ex: %@", [&] {
    s.cleanedFor = readCleanedFor();
    if (rt::Class c = rt::getClass("INInteraction"))
      s.donate.replace(c, "donateInteractionWithCompletion:", donate);
    if (rt::Class c = rt::getClass("CSSearchableIndex"))
      s.indexItems.replace(c, "indexSearchableItems:completionHandler:", indexItems);
    QBSessionHooks::addFilterListener(
        [](const std::unordered_set<std::string>& secrets, bool) { secretsRefreshed(secrets); });
    sys::log("[QB] outside records: donations %@, search index %@",
             s.donate.installed() ? "filtered" : "absent",
             s.indexItems.installed() ? "filtered" : "absent");
  });
}

}  // namespace hiding
