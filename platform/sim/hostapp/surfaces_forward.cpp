// The forward/share picker (SessionSelectController with its
// SessionSelectView) and its recent-forward row (RecentForwardScrollView).
// The row asks the select view for the recent forward targets, which come
// from the host's own record of recent chats. The candidate list offers a
// chat when the controller does not filter it and the view accepts it.
#include <set>

#include "sim/hostapp/host_class.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/runtime.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

HostModel& model() { return HostApp::current().model; }

bool responds(Id obj, const char* sel) { return obj && rt::respondsTo(obj, rt::sel(sel)); }

Id recentChatContacts() {
  std::vector<Id> out;
  for (const std::string& u : model().recentChats) out.push_back(hostContact(u));
  return rt::array(out);
}

// --- SessionSelectView
Id recentForwardContacts(Id, SEL) { return recentChatContacts(); }
bool onFilterContactCandidate(Id, SEL, Id contact) { return contact != nullptr; }

// --- RecentForwardScrollView: through its select view when it can.
Id contactsForRecentForwardMenu(Id self, SEL) {
  Id selectView = rt::ivarNamed(self, "m_selectView");
  if (responds(selectView, "recentForwardContacts"))
    return rt::send<Id>(selectView, "recentForwardContacts");
  return recentChatContacts();
}

// --- SessionSelectController: the user's own account is not offered.
bool onShouldFilterContact(Id, SEL, Id contact) {
  return !contact || contactUsername(contact) == model().me;
}

// Every chat: the host's sessions first, then the other friends and rooms.
std::vector<Id> candidatePool() {
  std::vector<std::string> names = model().sessions;
  for (const Friend& f : model().friends) names.push_back(f.username);
  for (const Room& r : model().rooms) names.push_back(r.username);
  std::set<std::string> seen;
  std::vector<Id> out;
  for (const std::string& u : names)
    if (seen.insert(u).second) out.push_back(hostContact(u));
  return out;
}

Id newInstance(const char* cls) {
  rt::Class c = rt::getClass(cls);
  return c ? rt::send<Id>(c, "new") : nullptr;
}

// The row asks through the select view it is wired to.
Id askRecentRow(Id row, Id selectView) {
  if (row) rt::setIvarNamed(row, "m_selectView", selectView);
  return responds(row, "contactsForRecentForwardMenu")
             ? rt::send<Id>(row, "contactsForRecentForwardMenu")
             : nullptr;
}

void selectViewDidLoad(Id self, SEL) {
  Id selectView = newInstance("SessionSelectView");
  Id row = newInstance("RecentForwardScrollView");
  rt::setIvarNamed(self, "m_selectView", selectView);
  rt::setIvarNamed(self, "m_recentView", row);
  Id recent = askRecentRow(row, selectView);
  rt::setIvarNamed(self, "m_recentContacts", rt::array(rt::elements(recent)));
  std::vector<Id> offered;
  for (Id c : candidatePool()) {
    bool filtered = responds(self, "onShouldFilterContact:") &&
                    rt::send<bool>(self, "onShouldFilterContact:", c);
    bool candidate = !responds(selectView, "onFilterContactCandidate:") ||
                     rt::send<bool>(selectView, "onFilterContactCandidate:", c);
    if (!filtered && candidate) offered.push_back(c);
  }
  rt::setIvarNamed(self, "m_candidates", rt::array(offered));
}

}  // namespace

void defineForwardClasses(HostApp& app) {
  HostClass(app, "SessionSelectView", "UIView")
      .method("recentForwardContacts", recentForwardContacts)
      .method("onFilterContactCandidate:", onFilterContactCandidate)
      .build();
  HostClass(app, "RecentForwardScrollView", "UIView")
      .ivar("m_selectView", "@")
      .method("contactsForRecentForwardMenu", contactsForRecentForwardMenu)
      .build();
  HostClass(app, kForwardScreenClass, "UIViewController")
      .ivar("m_selectView", "@")
      .ivar("m_recentView", "@")
      .ivar("m_recentContacts", "@")
      .ivar("m_candidates", "@")
      .method("onShouldFilterContact:", onShouldFilterContact)
      .method("viewDidLoad", selectViewDidLoad)
      .build();
}

std::optional<std::vector<std::string>> forwardRowAnswer() {
  if (!rt::getClass(kForwardScreenClass)) return std::nullopt;
  // Views of its own, as the picker builds them, so no picker on screen changes.
  Id selectView = newInstance("SessionSelectView");
  Id row = newInstance("RecentForwardScrollView");
  if (selectView) sim::autorelease(selectView);
  if (row) sim::autorelease(row);
  std::vector<std::string> out;
  for (Id c : rt::elements(askRecentRow(row, selectView))) out.push_back(contactUsername(c));
  return out;
}

}  // namespace hostapp
