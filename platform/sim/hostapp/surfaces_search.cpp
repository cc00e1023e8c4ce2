// Contact search (FTSSearchViewController). Its results come from two
// sources: first the contacts section that ContactTagSearchFromContactLogic
// fills into its own search dictionary, then the friends of
// FTSContactDataProvider's contact dictionary that match and are not listed
// yet, each part in the contacts list's order. A build without one source
// shows the other alone.
#include <map>
#include <set>

#include "sim/hostapp/host_class.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/runtime.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

HostModel& model() { return HostApp::current().model; }

bool matches(Id contact, const std::string& text) {
  Friend* f = model().findFriend(contactUsername(contact));
  return f && matchesSearch(*f, contact, text);
}

// --- ContactTagSearchFromContactLogic: the "contact" section of its
// m_dicSearchResult holds the matching friends.
void fillSectionResultForDicSearchResult(Id self, SEL) {
  std::string text = rt::asString(rt::ivarNamed(self, "m_searchText")).value_or("");
  std::vector<Id> found;
  for (const Friend& f : model().friends) {
    Id c = hostContact(f.username);
    if (matchesSearch(f, c, text)) found.push_back(c);
  }
  sortInContactsOrder(found);
  rt::setIvarNamed(self, "m_dicSearchResult",
                   rt::mutableDictionary({{rt::str("contact"), rt::mutableArray(found)}}));
}

// --- FTSContactDataProvider: every friend, by section key. A mutable
// dictionary, or an immutable one in the fts-immutable build.
Id getDicContacts(Id, SEL) {
  std::map<std::string, std::vector<Id>> bySection;
  for (const Friend& f : model().friends) {
    Id c = hostContact(f.username);
    bySection[sectionKeyOf(contactDisplayName(c))].push_back(c);
  }
  std::vector<std::pair<Id, Id>> entries;
  for (auto& [key, list] : bySection) entries.emplace_back(rt::str(key), rt::array(list));
  return HostApp::current().build.hasVariant("fts-immutable") ? rt::dictionary(entries)
                                                              : rt::mutableDictionary(entries);
}

// --- The search screen.
std::vector<Id> fromContactLogic(const std::string& text) {
  rt::Class cls = rt::getClass("ContactTagSearchFromContactLogic");
  if (!cls) return {};
  Id logic = rt::send<Id>(cls, "new");
  rt::setIvarNamed(logic, "m_searchText", rt::str(text));
  if (rt::respondsTo(logic, rt::sel("fillSectionResultForDicSearchResult")))
    rt::send<void>(logic, "fillSectionResultForDicSearchResult");
  Id dict = rt::ivarNamed(logic, "m_dicSearchResult");
  if (!rt::isDictionary(dict)) return {};
  // The screen orders the logic's own mutable list in place: handed back
  // immutable, it raises, as it would on a phone.
  Id contacts = rt::objectForKey(dict, "contact");
  std::vector<Id> found = rt::elements(contacts);
  sortInContactsOrder(found);
  for (std::size_t i = 0; i < found.size(); ++i)
    rt::send<void>(contacts, "replaceObjectAtIndex:withObject:", (unsigned long)i, found[i]);
  return found;
}

std::vector<Id> fromDataProvider(const std::string& text, const std::set<std::string>& listed) {
  rt::Class cls = rt::getClass("FTSContactDataProvider");
  Id provider = cls ? rt::send<Id>(cls, "new") : nullptr;
  if (!provider || !rt::respondsTo(provider, rt::sel("getDicContacts"))) return {};
  Id dict = rt::send<Id>(provider, "getDicContacts");
  std::vector<Id> found;
  std::set<std::string> seen = listed;
  auto consider = [&](Id c) {
    if (matches(c, text) && seen.insert(contactUsername(c)).second) found.push_back(c);
  };
  if (rt::isDictionary(dict)) {
    for (Id key : rt::allKeys(dict)) {
      Id value = rt::objectForKey(dict, key);
      if (rt::isArray(value)) {
        for (Id c : rt::elements(value)) consider(c);
      } else {
        consider(value);
      }
    }
  }
  sortInContactsOrder(found);
  return found;
}

std::vector<Id> searchResults(const std::string& text) {
  std::vector<Id> rows = fromContactLogic(text);
  std::set<std::string> listed;
  for (Id c : rows) listed.insert(contactUsername(c));
  for (Id c : fromDataProvider(text, listed)) rows.push_back(c);
  return rows;
}

void searchViewDidLoad(Id self, SEL) {
  std::string text = rt::asString(rt::ivarNamed(self, "m_searchText")).value_or("");
  rt::setIvarNamed(self, "m_results", rt::array(searchResults(text)));
}

}  // namespace

void defineSearchClasses(HostApp& app) {
  HostClass(app, "ContactTagSearchFromContactLogic")
      .ivar("m_searchText", "@")
      .ivar("m_dicSearchResult", "@")
      .method("fillSectionResultForDicSearchResult", fillSectionResultForDicSearchResult)
      .build();
  HostClass(app, "FTSContactDataProvider").method("getDicContacts", getDicContacts).build();
  HostClass(app, kSearchScreenClass, "UIViewController")
      .ivar("m_searchText", "@")
      .ivar("m_results", "@")
      .method("viewDidLoad", searchViewDidLoad)
      .build();
}

std::optional<std::vector<std::string>> searchAnswer(const std::string& text) {
  if (!rt::getClass(kSearchScreenClass)) return std::nullopt;
  std::vector<std::string> out;
  for (Id c : searchResults(text)) out.push_back(contactUsername(c));
  return out;
}

}  // namespace hostapp
