// The twelve replacements of QBExtraHooks and their installer. Array results
// are filtered into new arrays, the search dictionaries are filtered in place,
// and the Moments count and index are answered over the host's timeline with
// the secret items skipped. Any failure of the filtering answers with the
// host's own value, so a failure shows a secret rather than breaking a screen.
#include "hiding/extra_hooks.hpp"
#include "hiding/row_map.hpp"
#include "hiding/session_hooks.hpp"
#include "hiding/session_state.hpp"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "core/config.hpp"
#include "host/hook.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/process_state.hpp"

namespace hiding {
namespace {

using rt::Id;
using rt::SEL;

using VetoHook = host::Hook<bool(Id)>;
using ArrayHook = host::Hook<Id()>;

// Dictionaries nested deeper than this are left as they are (a dictionary
// that holds itself must not loop).
constexpr int kMaxDictionaryDepth = 32;

struct ExtraHooksState {
  bool installed = false;
  VetoHook onShouldFilterContact{false};
  VetoHook onFilterContactCandidate{true};
  ArrayHook recentForwardContacts;
  ArrayHook contactsForRecentForwardMenu;
  host::Hook<Id(unsigned)> getContactsArrayWith;
  ArrayHook getAllNormalContact;
  ArrayHook getFavourContactArray;
  host::Hook<void(unsigned, Id, Id, Id)> fillSectionResult;
  host::Hook<void()> fillSectionResultForDicSearchResult;
  ArrayHook getDicContacts;
  host::Hook<unsigned long()> countOfTimelineDataItem;
  host::Hook<Id(long)> getTimelineDataItemOfIndex;
  // The timeline's shown items. Keyed by the settings revision too: these
  // hooks read the secrets live, not from the filter's snapshot.
  RowMap moments;
  // What every Moments call reads, found once at install: both live as long
  // as the process, as this does.
  const core::QBConfig* config = nullptr;
  const SessionHooksState* session = nullptr;
};

[[gnu::always_inline]] inline ExtraHooksState& extraState() {
  return sys::state<ExtraHooksState>();
}

bool hiding() { return hiding::QBSessionHooks::listsHideSecrets(); }

// --- The forward picker asks two opposite questions; both answers keep a
// secret out.

bool onShouldFilterContact(Id self, SEL cmd, Id contact) {
  return extraState().onShouldFilterContact.run(
      "[QB] SessionSelectController onShouldFilterContact: ex: %@",
      [&](VetoHook::Original& original) {
        if (hiding() && QBExtraHooks::isSecretEntry(contact)) return true;
        return original(contact);
      },
      self, cmd, contact);
}

bool onFilterContactCandidate(Id self, SEL cmd, Id contact) {
  return extraState().onFilterContactCandidate.run(
      "[QB] SessionSelectView onFilterContactCandidate: ex: %@",
      [&](VetoHook::Original& original) {
        if (hiding() && QBExtraHooks::isSecretEntry(contact)) return false;
        return original(contact);
      },
      self, cmd, contact);
}

// --- Array results: the recent forwards and the contact lists.

Id filteredArray(sys::ExLine exLine, const ArrayHook& hook, Id self, SEL cmd) {
  return hook.run(
      exLine, [&](ArrayHook::Original& original) { return QBExtraHooks::filterArray(original()); },
      self, cmd);
}

Id recentForwardContacts(Id self, SEL cmd) {
  return filteredArray("[QB] SessionSelectView recentForwardContacts ex: %@",
                       extraState().recentForwardContacts, self, cmd);
}
Id contactsForRecentForwardMenu(Id self, SEL cmd) {
  return filteredArray("[QB] RecentForwardScrollView contactsForRecentForwardMenu ex: %@",
                       extraState().contactsForRecentForwardMenu, self, cmd);
}
Id getAllNormalContact(Id self, SEL cmd) {
  return filteredArray("[QB] ContactsDataLogic getAllNormalContact ex: %@",
                       extraState().getAllNormalContact, self, cmd);
}
Id getFavourContactArray(Id self, SEL cmd) {
  return filteredArray("[QB] ContactsDataLogic getFavourContactArray ex: %@",
                       extraState().getFavourContactArray, self, cmd);
}

Id getContactsArrayWith(Id self, SEL cmd, unsigned type) {
  using Hook = host::Hook<Id(unsigned)>;
  return extraState().getContactsArrayWith.run(
      "[QB] ContactsDataLogic getContactsArrayWith: ex: %@",
      [&](Hook::Original& original) { return QBExtraHooks::filterArray(original(type)); }, self,
      cmd, type);
}

// --- Section and search dictionaries: the host fills them, then its screen
// reads them.

void fillSectionResult(Id self, SEL cmd, unsigned option, Id sectionKeys, Id sectionTitles,
                       Id searchResult) {
  using Hook = host::Hook<void(unsigned, Id, Id, Id)>;
  extraState().fillSectionResult.run(
      "[QB] ContactsDataLogic fillSectionResultForOption: ex: %@",
      [&](Hook::Original& original) {
        original(option, sectionKeys, sectionTitles, searchResult);
        QBExtraHooks::filterDictionaryInPlace(searchResult);
        QBExtraHooks::filterDictionaryInPlace(sectionTitles);
      },
      self, cmd, option, sectionKeys, sectionTitles, searchResult);
}

void fillSectionResultForDicSearchResult(Id self, SEL cmd) {
  using Hook = host::Hook<void()>;
  extraState().fillSectionResultForDicSearchResult.run(
      "[QB] ContactTagSearchFromContactLogic fillSectionResultForDicSearchResult ex: %@",
      [&](Hook::Original& original) {
        original();
        for (const char* key : kSearchDictionaryKeys)
          host::guarded("[QB] ContactTagSearchFromContactLogic search dictionary ex: %@",
                        [&] { QBExtraHooks::filterDictionaryInPlace(rt::probeKey(self, key)); });
      },
      self, cmd);
}

// --- The search data provider: a mutable result is filtered in place; an
// immutable one is rebuilt without its secret entries.

Id withoutSecrets(Id dictionary) {
  Id out = rt::mutableDictionary();
  for (Id key : rt::elements(rt::send<Id>(dictionary, "allKeys"))) {
    Id value = rt::objectForKey(dictionary, key);
    if (rt::isArray(value))
      rt::setObjectForKey(out, QBExtraHooks::filterArray(value), key);
    else if (value && !QBExtraHooks::isSecretEntry(value))
      rt::setObjectForKey(out, value, key);
  }
  return out;
}

Id getDicContacts(Id self, SEL cmd) {
  return extraState().getDicContacts.run(
      "[QB] FTSContactDataProvider getDicContacts ex: %@",
      [&](ArrayHook::Original& original) -> Id {
        Id result = original();
        if (!result || !hiding()) return result;
        if (rt::isMutableDictionary(result)) {
          QBExtraHooks::filterDictionaryInPlace(result);
          return result;
        }
        return rt::isDictionary(result) ? withoutSecrets(result) : result;
      },
      self, cmd);
}

// --- Moments: the timeline as if its secret items did not exist, up to the
// scan cap, answered from the timeline's row map.

const char* const kCountSel = "countOfTimelineDataItem";
const char* const kItemSel = "getTimelineDataItemOfIndex:";

Id hostItemAt(const ExtraHooksState& s, Id facade, long index) {
  return s.getTimelineDataItemOfIndex.original(facade, s.getTimelineDataItemOfIndex.selector(),
                                               index);
}

RowMapKey momentsKey(const ExtraHooksState& s, Id facade, unsigned long n, const core::QBConfig& c,
                     const SessionHooksState& session) {
  long scan = long(std::min<unsigned long>(n, kMomentsScanCap));
  return {&s.getTimelineDataItemOfIndex,
          facade,
          0,
          long(std::min<unsigned long>(n, std::numeric_limits<long>::max())),
          scan,
          session.rowMapFlushes,
          c.revision()};
}

unsigned long countOfTimelineDataItem(Id self, SEL cmd) {
  using Hook = host::Hook<unsigned long()>;
  ExtraHooksState& s = extraState();
  return s.countOfTimelineDataItem.run(
      "[QB] WCFacade countOfTimelineDataItem ex: %@",
      [&](Hook::Original& original) -> unsigned long {
        unsigned long n = original();
        const core::QBConfig& c = *s.config;
        const SessionHooksState& session = *s.session;
        if (!listsHideSecrets(c, session) || !s.getTimelineDataItemOfIndex.installed()) return n;
        return (unsigned long)s.moments.shownCount(
            momentsKey(s, self, n, c, session), sys::mediaTime(),
            [&](long i) { return hostItemAt(s, self, i); }, QBExtraHooks::isSecretEntry);
      },
      self, cmd);
}

Id getTimelineDataItemOfIndex(Id self, SEL cmd, long index) {
  using Hook = host::Hook<Id(long)>;
  ExtraHooksState& s = extraState();
  return s.getTimelineDataItemOfIndex.run(
      "[QB] WCFacade getTimelineDataItemOfIndex: ex: %@",
      [&](Hook::Original& original) -> Id {
        if (!original.available()) return nullptr;
        const core::QBConfig& c = *s.config;
        const SessionHooksState& session = *s.session;
        if (!listsHideSecrets(c, session)) return original(index);
        if (!s.countOfTimelineDataItem.installed()) return nullptr;
        unsigned long n =
            s.countOfTimelineDataItem.original(self, s.countOfTimelineDataItem.selector());
        long i = s.moments.hostRow(
            momentsKey(s, self, n, c, session), sys::mediaTime(), index,
            [&](long k) { return hostItemAt(s, self, k); }, QBExtraHooks::isSecretEntry);
        return i < 0 ? nullptr : s.moments.entryAt(i);
      },
      self, cmd, index);
}

void filterDictionary(Id d, int depth) {
  if (!d || depth > kMaxDictionaryDepth || !hiding()) return;
  if (!rt::respondsTo(d, rt::sel("allKeys")) || !rt::respondsTo(d, rt::sel("setObject:forKey:")))
    return;
  host::guarded("[QB] QBExtraHooks filterDictionary ex: %@", [&] {
    for (Id key : rt::elements(rt::send<Id>(d, "allKeys"))) {
      Id value = rt::objectForKey(d, key);
      if (rt::isArray(value))
        rt::setObjectForKey(d, QBExtraHooks::filterArray(value), key);
      else if (rt::isDictionary(value))
        filterDictionary(value, depth + 1);
    }
  });
}

}  // namespace

bool QBExtraHooks::isSecretEntry(Id entry) {
  if (!entry) return false;
  const core::QBConfig& config = core::QBConfig::shared();
  if (rt::isString(entry)) {
    std::optional<std::string> name = rt::nonEmptyString(entry);
    return name && config.isSecretUser(*name);
  }
  std::string name = host::QBRuntime::usernameFrom(entry);
  return !name.empty() && config.isSecretUser(name);
}

Id QBExtraHooks::filterArray(Id value) {
  if (!rt::isArray(value) || !hiding()) return value;
  std::vector<Id> kept;
  std::vector<Id> all = rt::elements(value);
  for (Id e : all)
    if (!isSecretEntry(e)) kept.push_back(e);
  if (kept.size() == all.size()) return value;
  // Of the class family the host gave: its code may sort or add to a mutable
  // array it handed out or keeps in its dictionaries.
  return rt::isMutableArray(value) ? rt::mutableArray(kept) : rt::array(kept);
}

void QBExtraHooks::filterDictionaryInPlace(Id dictionary) { filterDictionary(dictionary, 0); }

void QBExtraHooks::install() {
  ExtraHooksState& s = extraState();
  if (s.installed) return;
  s.installed = true;
  host::guarded("[QB] extra install ex: %@", [&] {
    if (rt::Class c = rt::getClass("SessionSelectController"))
      s.onShouldFilterContact.replace(c, "onShouldFilterContact:", onShouldFilterContact);
    if (rt::Class c = rt::getClass("SessionSelectView")) {
      s.onFilterContactCandidate.replace(c, "onFilterContactCandidate:", onFilterContactCandidate);
      s.recentForwardContacts.replace(c, "recentForwardContacts", recentForwardContacts);
    }
    if (rt::Class c = rt::getClass("RecentForwardScrollView"))
      s.contactsForRecentForwardMenu.replace(c, "contactsForRecentForwardMenu",
                                             contactsForRecentForwardMenu);
    if (rt::Class c = rt::getClass("ContactsDataLogic")) {
      s.getContactsArrayWith.replace(c, "getContactsArrayWith:", getContactsArrayWith);
      s.getAllNormalContact.replace(c, "getAllNormalContact", getAllNormalContact);
      s.getFavourContactArray.replace(c, "getFavourContactArray", getFavourContactArray);
      if (s.fillSectionResult.replace(
              c, "fillSectionResultForOption:arrSectionKey:dicSectionTitle:dicSearchResult:",
              fillSectionResult))
        sys::log("[QB] hooked ContactsDataLogic fillSectionResult");
    }
    if (rt::Class c = rt::getClass("ContactTagSearchFromContactLogic"))
      s.fillSectionResultForDicSearchResult.replace(c, "fillSectionResultForDicSearchResult",
                                                    fillSectionResultForDicSearchResult);
    if (rt::Class c = rt::getClass("FTSContactDataProvider")) {
      if (s.getDicContacts.replace(c, "getDicContacts", getDicContacts))
        sys::log("[QB] hooked FTSContactDataProvider getDicContacts");
    }
    if (rt::Class c = rt::getClass("WCFacade")) {
      s.config = &core::QBConfig::shared();
      s.session = &sessionState();
      s.countOfTimelineDataItem.replace(c, kCountSel, countOfTimelineDataItem);
      s.getTimelineDataItemOfIndex.replace(c, kItemSel, getTimelineDataItemOfIndex);
    }
    sys::log("[QB] extra hooks: contacts/moments/forward OK");
  });
}

}  // namespace hiding
