// The host's main chat list: the session objects, the session managers
// (MainSessionMgr, MMNewSessionMgr), the list's logic controller and its view
// controller. The list screen shows what its table
// view got from its data source at the last reload, as on a phone.
#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

HostModel& model() { return HostApp::current().model; }

Id service(const char* cls) { return hostService(cls); }

bool variant(const char* name) { return HostApp::current().build.hasVariant(name); }

const char* sessionNameKey() {
  return variant("session-key-first") ? "m_nsUsrName" : "m_nsUserName";
}

Id makeSession(const std::string& username) {
  Id s = rt::send<Id>(rt::getClass("MMSessionInfo"), "new");
  rt::setIvarNamed(s, sessionNameKey(), rt::str(username));
  return s;
}

// --- MainSessionMgr: the sessions the main frame shows, filtered through the
// class's own canShowInMainFrame: when rebuilt.
void rebuildSessions(Id mgr) {
  std::vector<Id> shown;
  rt::Class cls = rt::classOf(mgr);
  for (const std::string& u : model().sessions) {
    bool canShow = variant("store-ignores-canshow") ||
                   !rt::respondsTo(rt::toId(cls), rt::sel("canShowInMainFrame:")) ||
                   rt::send<bool>(cls, "canShowInMainFrame:", rt::str(u));
    if (canShow) shown.push_back(makeSession(u));
  }
  rt::setIvarNamed(mgr, "m_arrNormalSessions", rt::array(shown));
}

// The host's own read of its list, straight from the manager's storage (a
// build without the manager lists every session).
const std::vector<Id>& mainSessionList() {
  Id mgr = service("MainSessionMgr");
  if (!mgr) {
    std::vector<Id> all;
    for (const std::string& u : model().sessions) all.push_back(makeSession(u));
    Id& list = sim::runtime().singleton("hostapp.allSessions");
    list = rt::array(all);
    return sim::native<sim::ArrayData>(list)->items;
  }
  Id list = rt::ivarNamed(mgr, "m_arrNormalSessions");
  if (!list) {
    rebuildSessions(mgr);
    list = rt::ivarNamed(mgr, "m_arrNormalSessions");
  }
  return sim::native<sim::ArrayData>(list)->items;
}

void rebuildMainSessions(Id self, SEL) { rebuildSessions(self); }
Id normalSessions(Id, SEL) { return rt::array(mainSessionList()); }
Id noSessions(Id, SEL) { return rt::array({}); }
long visibleNormalSessionCount(Id, SEL) { return long(mainSessionList().size()); }
Id getNormalSessionAtIndex(Id, SEL, long i) {
  const std::vector<Id>& list = mainSessionList();
  return i >= 0 && i < long(list.size()) ? list[std::size_t(i)] : nullptr;
}
void updateMainSessionList(Id, SEL) {}
bool canShowInMainFrame(Id, SEL, Id) { return true; }

// --- MMNewSessionMgr: every session, in m_arrSessionInfo.
Id newSessionMgrInit(Id self, SEL) {
  std::vector<Id> all;
  for (const std::string& u : model().sessions) all.push_back(makeSession(u));
  rt::setIvarNamed(self, "m_arrSessionInfo", rt::mutableArray(all));
  return self;
}

// --- The rows of the main list's single section, as both the logic
// controller and the view controller read them.
long sessionCount(long section) { return section == 0 ? long(mainSessionList().size()) : 0; }
// The path's row and section as -row and -section answer them, read in place:
// a getter the host's list calls for every row stays as cheap as the host's.
Id sessionAt(Id indexPath) {
  const auto* path = sim::native<sim::IndexPathData>(indexPath);
  if (!path || path->section != 0) return nullptr;
  const std::vector<Id>& list = mainSessionList();
  long row = path->row;
  return row >= 0 && row < long(list.size()) ? list[std::size_t(row)] : nullptr;
}
Id cellDataAt(Id indexPath) {
  Id session = sessionAt(indexPath);
  if (!session) return nullptr;
  Id cell = rt::send<Id>(rt::getClass("MMMainSessionCellData"), "new");
  rt::setIvarNamed(cell, "m_sessionInfo", session);
  rt::setIvarNamed(cell, "m_nsUsrName", rt::ivarNamed(session, sessionNameKey()));
  return cell;
}

// --- MainFrameLogicController
long getSessionCountForSection(Id, SEL, long section) { return sessionCount(section); }
Id getSessionInfoAtIndexPath(Id, SEL, Id indexPath) { return sessionAt(indexPath); }
Id getCellDataAtIndexPath(Id, SEL, Id indexPath) { return cellDataAt(indexPath); }

// --- NewMainFrameViewController: its own getters over the same list, or,
// in the list-through-logic build, its logic controller's (hooked) row getters.
Id logicController() {
  Id& logic = sim::runtime().singleton("hostapp.mainFrameLogic");
  if (!logic && rt::getClass("MainFrameLogicController"))
    logic = rt::send<Id>(rt::getClass("MainFrameLogicController"), "new");
  return logic;
}
bool throughLogic() { return variant("list-through-logic") && logicController(); }
// The count stays the controller's own; only the rows go through the logic
// controller, whose hooks must then pass the rows through unchanged.
long logicGetCountForSection(Id, SEL, long section) { return sessionCount(section); }
Id logicGetSessionAtIndexPath(Id, SEL, Id ip) {
  if (throughLogic()) return rt::send<Id>(logicController(), "getSessionInfoAtIndexPath:", ip);
  return sessionAt(ip);
}
Id logicGetCellDataAtIndexPath(Id, SEL, Id ip) {
  if (throughLogic()) return rt::send<Id>(logicController(), "getCellDataAtIndexPath:", ip);
  return cellDataAt(ip);
}
long numberOfSections(Id, SEL, Id) { return 1; }
// A build without the controller's own getters reads its list directly: the
// code that would call them is not in it either.
long numberOfRows(Id self, SEL, Id, long section) {
  if (!rt::respondsTo(self, rt::sel("logicGetCountForSection:"))) return sessionCount(section);
  return rt::send<long>(self, "logicGetCountForSection:", section);
}
// The name a chat's row shows: the remark, the nickname or the group's title.
std::string chatTitle(const std::string& username) {
  if (Friend* f = model().findFriend(username))
    return !f->remark.empty() ? f->remark : !f->nickname.empty() ? f->nickname : username;
  if (const Room* r = model().findRoom(username)) return r->title.empty() ? username : r->title;
  return username;
}

// The host's cell shows the cell data of its row: the chat's name, its last
// message under it, and the person's avatar.
Id cellForRow(Id self, SEL, Id, Id ip) {
  Id data = rt::respondsTo(self, rt::sel("logicGetCellDataAtIndexPath:"))
                ? rt::send<Id>(self, "logicGetCellDataAtIndexPath:", ip)
                : cellDataAt(ip);
  std::string name = data ? rt::asString(rt::ivarNamed(data, "m_nsUsrName")).value_or("") : "";
  auto last = model().lastMessages.find(name);
  return sim::makeListCell(name.empty() ? "" : chatTitle(name),
                           last == model().lastMessages.end() ? "" : last->second, data, name);
}
void mainViewDidLoad(Id self, SEL) {
  Id table = rt::send<Id>(rt::getClass("UITableView"), "new");
  rt::setIvarNamed(self, "m_tableView", table);
  rt::send<void>(table, "setDataSource:", self);
  rt::send<void>(rt::send<Id>(self, "view"), "addSubview:", table);
  rt::send<void>(table, "reloadData");
}
// The host's own appearance methods (they call up to UIKit's).
void mainViewWillAppear(Id, SEL, bool) {}
void mainViewDidAppear(Id, SEL, bool) {}
void reloadSessions(Id self, SEL) {
  rt::send<void>(rt::ivarNamed(self, "m_tableView"), "reloadData");
}

// --- BaseMsgContentViewController: a chat.
void chatViewDidAppear(Id, SEL, bool) {}
void chatViewDidLoad(Id, SEL) {}

}  // namespace

void defineMainListClasses(HostApp& app) {
  HostClass(app, "BaseMsgContentViewController", "UIViewController")
      .ivar("m_nsUsrName", "@")
      .method("viewDidLoad", chatViewDidLoad)
      .method("viewDidAppear:", chatViewDidAppear)
      .build();
  HostClass(app, "MMSessionInfo")
      .ivar("m_nsUsrName", "@")
      .ivar("m_nsUserName", "@")
      .ivar("m_contact", "@")
      .build();
  HostClass(app, "MMMainSessionCellData")
      .ivar("m_nsUsrName", "@")
      .ivar("m_sessionInfo", "@")
      .build();
  HostClass(app, "MainSessionMgr")
      .ivar("m_arrNormalSessions", "@")
      .classMethod("canShowInMainFrame:", canShowInMainFrame)
      .method("normalSessions", normalSessions)
      .method("topSessions", noSessions)
      .method("allTopSessions", noSessions)
      .method("visibleNormalSessionCount", visibleNormalSessionCount)
      .method("getNormalSessionAtIndex:", getNormalSessionAtIndex)
      .method("rebuildMainSessions", rebuildMainSessions)
      .method("updateMainSessionList", updateMainSessionList)
      .build();
  HostClass(app, "MMNewSessionMgr")
      .ivar("m_arrSessionInfo", "@")
      .method("init", newSessionMgrInit)
      .build();
  HostClass(app, "MainFrameLogicController")
      .method("getSessionCountForSection:", getSessionCountForSection)
      .method("getSessionInfoAtIndexPath:", getSessionInfoAtIndexPath)
      .method("getCellDataAtIndexPath:", getCellDataAtIndexPath)
      .build();
  HostClass(app, "NewMainFrameViewController", "UIViewController")
      .ivar("m_tableView", "@")
      .method("viewDidLoad", mainViewDidLoad)
      .method("viewWillAppear:", mainViewWillAppear)
      .method("viewDidAppear:", mainViewDidAppear)
      .method("logicGetCountForSection:", logicGetCountForSection)
      .method("logicGetSessionAtIndexPath:", logicGetSessionAtIndexPath)
      .method("logicGetCellDataAtIndexPath:", logicGetCellDataAtIndexPath)
      .method("numberOfSectionsInTableView:", numberOfSections)
      .method("tableView:numberOfRowsInSection:", numberOfRows)
      .method("tableView:cellForRowAtIndexPath:", cellForRow)
      .method("reloadSessions", reloadSessions)
      .build();
}

void HostApp::openChat(const std::string& username) {
  rt::Class cls = rt::getClass("BaseMsgContentViewController");
  if (!cls || !tabs_) return;
  selectTab(0);
  Id nav = rt::send<Id>(tabs_, "selectedViewController");
  popToRoot();
  Id chat = sim::autorelease(rt::send<Id>(cls, "new"));  // owned by the stack it goes on
  rt::setIvarNamed(chat, "m_nsUsrName", rt::str(username));
  model.noteRecentChat(username);
  rt::send<void>(nav, "pushViewController:animated:", chat, true);
}

void HostApp::popToRoot() {
  if (!tabs_) return;
  Id nav = rt::send<Id>(tabs_, "selectedViewController");
  while (true) {
    Id top = rt::send<Id>(nav, "topViewController");
    Id popped = rt::send<Id>(nav, "popViewControllerAnimated:", true);
    if (!popped) break;
    sim::disappear(top);
    sim::appear(rt::send<Id>(nav, "topViewController"));
  }
}

namespace {
std::string rowUsername(Id cell) {
  Id data = sim::representedBy(cell);
  Id name = rt::ivarNamed(data, "m_nsUsrName");
  return rt::asString(name).value_or("(empty row)");
}
}  // namespace

std::vector<std::string> HostApp::mainListShown() const {
  std::vector<std::string> out;
  if (!mainFrame_) return out;
  Id table = rt::ivarNamed(mainFrame_, "m_tableView");
  const sim::ViewState* v = table ? sim::viewState(table) : nullptr;
  if (!v) return out;
  for (const auto& section : v->shownRows)
    for (Id cell : section) out.push_back(rowUsername(cell));
  return out;
}

bool HostApp::scrollMainList() {
  Id table = mainFrame_ ? rt::ivarNamed(mainFrame_, "m_tableView") : nullptr;
  if (!table) return false;
  sim::scrollThrough(table);
  return true;
}

std::optional<std::vector<std::string>> HostApp::mainListAnswer() const {
  if (!mainFrame_ || !rt::isKindOf(mainFrame_, "NewMainFrameViewController")) return std::nullopt;
  // The controller is its table's data source; asking it leaves the table as it is.
  Id table = rt::ivarNamed(mainFrame_, "m_tableView");
  std::vector<std::string> out;
  long sections = rt::send<long>(mainFrame_, "numberOfSectionsInTableView:", table);
  for (long s = 0; s < sections; ++s) {
    long rows = rt::send<long>(mainFrame_, "tableView:numberOfRowsInSection:", table, s);
    for (long r = 0; r < rows; ++r)
      out.push_back(rowUsername(rt::send<Id>(mainFrame_, "tableView:cellForRowAtIndexPath:", table,
                                             rt::indexPath(r, s))));
  }
  return out;
}

void HostApp::sessionsChanged() {
  if (!sim::hasCurrentProcess() || sim::currentProcess().hostApp() != this) return;
  if (Id mgr = service("MainSessionMgr")) rebuildSessions(mgr);
  if (mainFrame_ && rt::respondsTo(mainFrame_, rt::sel("reloadSessions")))
    rt::send<void>(mainFrame_, "reloadSessions");
  indexNewChats();
}

}  // namespace hostapp
