// The contacts screen (ContactsViewController) and the parts of its data
// logic (ContactsDataLogic) that build it. Whenever the table reloads, and
// whenever the logic is told to reloadContacts, the logic asks
// getAllNormalContact for the friends and fills fresh section dictionaries
// through fillSectionResultForOption:…; the table's rows are the section
// arrays in section order. The starred group and the footer count are read
// at the same time.
#include <map>

#include "sim/hostapp/host_class.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

const char* const kFillSel =
    "fillSectionResultForOption:arrSectionKey:dicSectionTitle:dicSearchResult:";

struct ContactSections {
  Id friends = nullptr;  // what getAllNormalContact gave at the last reload
  Id keys = nullptr, titles = nullptr, results = nullptr;
  Id starred = nullptr;
  long footerCount = -1;
};

ContactSections& sections(Id logic) {
  if (!sim::native<ContactSections>(logic)) logic->native = ContactSections{};
  return *sim::native<ContactSections>(logic);
}

bool responds(Id obj, const char* sel) { return obj && rt::respondsTo(obj, rt::sel(sel)); }

std::vector<Id> allFriends() {
  std::vector<Id> out;
  for (const Friend& f : HostApp::current().model.friends) out.push_back(hostContact(f.username));
  return out;
}

// Groups the friends of the last reload (or, in a build without
// getAllNormalContact, the contact manager's) into the three containers.
void fillSections(Id logic, Id keys, Id titles, Id results) {
  Id source = sections(logic).friends;
  std::vector<Id> friends = rt::isArray(source) ? rt::elements(source) : allFriends();
  sortInContactsOrder(friends);
  std::map<std::string, std::vector<Id>> bySection;
  std::vector<std::string> order;
  for (Id c : friends) {
    std::string key = sectionKeyOf(contactDisplayName(c));
    if (bySection[key].empty()) order.push_back(key);
    bySection[key].push_back(c);
  }
  for (const std::string& key : order) {
    Id k = rt::str(key);
    rt::addObject(keys, k);
    rt::setObjectForKey(titles, k, k);
    rt::setObjectForKey(results, rt::mutableArray(bySection[key]), k);
  }
}

// The host orders each section in place once the fill is done: a section it
// gets back immutable raises, as it would on a phone.
void sortSectionsInPlace(Id results) {
  for (Id key : rt::allKeys(results)) {
    Id list = rt::objectForKey(results, key);
    std::vector<Id> order = rt::elements(list);
    sortInContactsOrder(order);
    for (std::size_t i = 0; i < order.size(); ++i)
      rt::send<void>(list, "replaceObjectAtIndex:withObject:", (unsigned long)i, order[i]);
  }
}

void fillSectionResult(Id self, SEL, unsigned, Id keys, Id titles, Id results) {
  fillSections(self, keys, titles, results);
}

// The whole chain of one reload.
void reloadContacts(Id self, SEL) {
  ContactSections& d = sections(self);
  d.friends =
      responds(self, "getAllNormalContact") ? rt::send<Id>(self, "getAllNormalContact") : nullptr;
  d.keys = rt::mutableArray();
  d.titles = rt::mutableDictionary();
  d.results = rt::mutableDictionary();
  if (responds(self, kFillSel))
    rt::send<void>(self, kFillSel, 0u, d.keys, d.titles, d.results);
  else
    fillSections(self, d.keys, d.titles, d.results);
  sortSectionsInPlace(d.results);
  d.starred = responds(self, "getFavourContactArray") ? rt::send<Id>(self, "getFavourContactArray")
                                                      : rt::array({});
  d.footerCount = responds(self, "getContactsArrayWith:")
                      ? rt::count(rt::send<Id>(self, "getContactsArrayWith:", 1u))
                      : rt::count(d.friends);
}

// Type 1 is every friend; the other lists are empty here.
Id getContactsArrayWith(Id, SEL, unsigned type) {
  return rt::array(type == 1 ? allFriends() : std::vector<Id>{});
}

// --- ContactsViewController

Id logicOf(Id screen) { return rt::ivarNamed(screen, "m_contactsDataLogic"); }

Id sectionRows(Id screen, long section) {
  Id logic = logicOf(screen);
  if (!logic) return nullptr;
  ContactSections& d = sections(logic);
  std::vector<Id> keys = rt::elements(d.keys);
  if (section < 0 || section >= long(keys.size())) return nullptr;
  return rt::objectForKey(d.results, keys[std::size_t(section)]);
}

// UIKit asks this first on every reloadData: the screen refreshes its data then.
long numberOfSections(Id self, SEL, Id) {
  Id logic = logicOf(self);
  if (!logic) return 0;
  reloadContacts(logic, nullptr);
  return rt::count(sections(logic).keys);
}
long numberOfRows(Id self, SEL, Id, long section) { return rt::count(sectionRows(self, section)); }
Id cellForRow(Id self, SEL, Id, Id ip) {
  std::vector<Id> rows = rt::elements(sectionRows(self, rt::indexPathSection(ip)));
  long row = rt::indexPathRow(ip);
  Id contact = row >= 0 && row < long(rows.size()) ? rows[std::size_t(row)] : nullptr;
  return sim::makeListCell(contact ? contactDisplayName(contact) : "", "", contact,
                           contactUsername(contact));
}

// The count under the last section, as the footer the host puts there.
Id titleForFooter(Id self, SEL, Id, long section) {
  Id logic = logicOf(self);
  if (!logic || section != rt::count(sections(logic).keys) - 1) return nullptr;
  if (sections(logic).footerCount < 0) return nullptr;
  return rt::str(std::to_string(sections(logic).footerCount) + "位联系人");
}

void viewDidLoad(Id self, SEL) {
  if (rt::Class cls = rt::getClass("ContactsDataLogic"))
    rt::setIvarNamed(self, "m_contactsDataLogic", rt::send<Id>(cls, "new"));
  Id table = rt::send<Id>(rt::getClass("UITableView"), "new");
  rt::setIvarNamed(self, "m_tableView", table);
  rt::send<void>(table, "setDataSource:", self);
  rt::send<void>(rt::send<Id>(self, "view"), "addSubview:", table);
  rt::send<void>(table, "reloadData");
}

}  // namespace

void defineContactsScreen(HostApp& app) {
  HostClass(app, "ContactsDataLogic")
      .method("reloadContacts", reloadContacts)
      .method("getContactsArrayWith:", getContactsArrayWith)
      .method(kFillSel, fillSectionResult)
      .build();
  HostClass(app, "ContactsViewController", "UIViewController")
      .ivar("m_tableView", "@")
      .ivar("m_contactsDataLogic", "@")
      .method("viewDidLoad", viewDidLoad)
      .method("numberOfSectionsInTableView:", numberOfSections)
      .method("tableView:numberOfRowsInSection:", numberOfRows)
      .method("tableView:cellForRowAtIndexPath:", cellForRow)
      .method("tableView:titleForFooterInSection:", titleForFooter)
      .build();
}

bool contactsOpened(HostApp& app) {
  Id screen = app.contactsScreen();
  return screen && rt::send<bool>(screen, "isViewLoaded");
}

std::vector<std::string> contactsShown(HostApp& app) {
  std::vector<std::string> out;
  Id screen = app.contactsScreen();
  Id table = rt::ivarNamed(screen, "m_tableView");
  const sim::ViewState* v = table ? sim::viewState(table) : nullptr;
  if (!v) return out;
  for (const auto& section : v->shownRows)
    for (Id cell : section) {
      std::string u = contactUsername(sim::representedBy(cell));
      out.push_back(u.empty() ? "(empty row)" : u);
    }
  return out;
}

namespace {
Id loadedLogic(HostApp& app) {
  Id screen = app.contactsScreen();
  if (!screen || !rt::isKindOf(screen, "ContactsViewController")) return nullptr;
  return logicOf(screen);
}
}  // namespace

std::vector<std::string> contactsStarred(HostApp& app) {
  std::vector<std::string> out;
  if (Id logic = loadedLogic(app))
    for (Id c : rt::elements(sections(logic).starred)) out.push_back(contactUsername(c));
  return out;
}

long contactsFooterCount(HostApp& app) {
  Id logic = loadedLogic(app);
  return logic ? sections(logic).footerCount : -1;
}

std::optional<ContactsAnswer> contactsAnswer() {
  if (!rt::getClass("ContactsViewController")) return std::nullopt;
  ContactsAnswer out;
  rt::Class cls = rt::getClass("ContactsDataLogic");
  if (!cls) return out;  // the screen has no logic: no rows
  // A logic of its own, as the screen builds one: the screen's keeps what it showed.
  Id logic = sim::autorelease(rt::send<Id>(cls, "new"));
  reloadContacts(logic, nullptr);
  ContactSections& d = sections(logic);
  for (Id key : rt::elements(d.keys))
    for (Id c : rt::elements(rt::objectForKey(d.results, key)))
      out.rows.push_back(contactUsername(c));
  for (Id c : rt::elements(d.starred)) out.starred.push_back(contactUsername(c));
  return out;
}

}  // namespace hostapp
