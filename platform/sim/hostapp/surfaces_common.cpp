// What the host's other screens share: reading a contact's username and
// display name, the contacts list's sections and order, search matching,
// opening a screen on the selected tab, and the registration of their classes.
#include <algorithm>
#include <functional>
#include <map>

#include "sim/hostapp/host_class.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/colors.hpp"

namespace hostapp {

void defineContactsScreen(HostApp& app);
void defineSearchClasses(HostApp& app);
void defineMomentsClasses(HostApp& app);
void defineForwardClasses(HostApp& app);

void defineSurfaceClasses(HostApp& app) {
  defineContactsScreen(app);
  defineSearchClasses(app);
  defineMomentsClasses(app);
  defineForwardClasses(app);
}

std::string contactUsername(rt::Id contact) {
  if (!contact || rt::isNull(contact)) return "";
  if (rt::isString(contact)) return *rt::asString(contact);
  // Contact records keep it in m_nsUsrName, timeline items in username.
  for (const char* name : {"m_nsUsrName", "username"})
    if (rt::Ivar iv = rt::getInstanceVariable(rt::classOf(contact), name))
      return rt::asString(rt::ivarObject(contact, iv)).value_or("");
  return "";
}

std::string contactDisplayName(rt::Id contact) {
  std::string name;
  if (contact && rt::respondsTo(contact, rt::sel("getContactDisplayName")))
    name = rt::asString(rt::send<rt::Id>(contact, "getContactDisplayName")).value_or("");
  return name.empty() ? contactUsername(contact) : name;
}

std::string sectionKeyOf(const std::string& displayName) {
  char c = displayName.empty() ? 0 : displayName[0];
  if (c >= 'a' && c <= 'z') return std::string(1, char(c - 'a' + 'A'));
  if (c >= 'A' && c <= 'Z') return std::string(1, c);
  return "#";
}

namespace {

// "A"-"Z" first, "#" last.
int sectionRank(const std::string& key) { return key == "#" ? 26 : key[0] - 'A'; }

}  // namespace

void sortInContactsOrder(std::vector<rt::Id>& contacts) {
  struct Keyed {
    rt::Id contact;
    int rank;
    std::string name, username;
  };
  std::vector<Keyed> keyed;
  for (rt::Id c : contacts) {
    std::string name = contactDisplayName(c);
    keyed.push_back({c, sectionRank(sectionKeyOf(name)), name, contactUsername(c)});
  }
  std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
    if (a.rank != b.rank) return a.rank < b.rank;
    int byName = rt::localizedStandardCompare(a.name, b.name);
    return byName != 0 ? byName < 0 : a.username < b.username;
  });
  for (std::size_t i = 0; i < keyed.size(); ++i) contacts[i] = keyed[i].contact;
}

bool matchesSearch(const Friend& f, rt::Id contact, const std::string& text) {
  std::string needle = rt::lowercase(text);
  for (const std::string& field : {contactDisplayName(contact), f.nickname, f.remark, f.username})
    if (rt::lowercase(field).find(needle) != std::string::npos) return true;
  return false;
}

namespace {

rt::Id& screenSlot(const char* name) {
  return sim::runtime().singleton(std::string("hostapp.screen.") + name);
}

// Kept alive in its slot after it is popped (kinder than the host, which frees
// it): the simulator reads what the screen last showed.
rt::Id newScreen(const char* cls) {
  rt::Class c = rt::getClass(cls);
  if (!c) c = rt::getClass("UIViewController");  // a build without the screen shows a blank one
  return rt::send<rt::Id>(c, "new");
}

// Pushes a new screen on the selected tab, on top of its first screen.
void push(HostApp& app, const char* slot, const char* cls,
          const std::function<void(rt::Id)>& setUp = nullptr) {
  if (!app.tabs()) return;
  app.popToRoot();
  rt::Id screen = newScreen(cls);
  static const std::map<std::string, std::string> titles = {
      {"search", "搜索"}, {"moments", "朋友圈"}, {"forward", "选择一个聊天"}};
  if (auto t = titles.find(slot); t != titles.end())
    rt::send<void>(screen, "setTitle:", rt::str(t->second));
  if (setUp) setUp(screen);
  rt::Id nav = rt::send<rt::Id>(app.tabs(), "selectedViewController");
  rt::send<void>(nav, "pushViewController:animated:", screen, true);
  screenSlot(slot) = screen;
}

std::vector<std::string> usernames(rt::Id list) {
  std::vector<std::string> out;
  for (rt::Id e : rt::elements(list)) {
    std::string u = contactUsername(e);
    out.push_back(u.empty() ? "(empty row)" : u);
  }
  return out;
}

}  // namespace

void openSearch(HostApp& app, const std::string& text) {
  push(app, "search", kSearchScreenClass, [&](rt::Id screen) {
    rt::setIvarNamed(screen, "m_searchText", rt::str(text));
    // Its search bar, in the navigation bar, holding what was typed.
    rt::Id search = rt::send<rt::Id>(rt::getClass("UISearchController"), "new");
    sim::SearchState& field = sim::extra<sim::SearchState>(search);
    field.spec.placeholder = "搜索";
    field.text = text;
    sim::ScreenState& look = sim::extra<sim::ScreenState>(screen);
    look.searchController = search;
    look.background = ui::kWhite;  // what the screen had before it had a look of its own
  });
}
void openMoments(HostApp& app) {
  if (app.tabs()) app.selectTab(kDiscoverTab);
  push(app, "moments", kMomentsScreenClass);
}
void openForward(HostApp& app) { push(app, "forward", kForwardScreenClass); }

bool searchOpened() { return screenSlot("search") != nullptr; }
bool momentsOpened() { return screenSlot("moments") != nullptr; }
bool forwardOpened() { return screenSlot("forward") != nullptr; }

std::vector<std::string> searchShown() {
  return usernames(rt::ivarNamed(screenSlot("search"), "m_results"));
}
std::vector<std::string> momentsShown() {
  return usernames(rt::ivarNamed(screenSlot("moments"), "m_items"));
}
std::vector<std::string> forwardRowShown() {
  return usernames(rt::ivarNamed(screenSlot("forward"), "m_recentContacts"));
}
std::vector<std::string> forwardCandidatesShown() {
  return usernames(rt::ivarNamed(screenSlot("forward"), "m_candidates"));
}

}  // namespace hostapp
