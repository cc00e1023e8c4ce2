// The filter: the eight hooks on the host's main-list getters, which answer
// as if secret sessions did not exist, and the listing of the host's sessions
// for the panel. Every replacement falls back to the host's own answer for the
// unchanged argument when anything fails, so a failure shows the secrets
// rather than breaking the list.
#include <algorithm>

#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "hiding/session_state.hpp"
#include "host/contact_info.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"

namespace hiding {
namespace {

using host::QBRuntime;
using rt::Id;
using rt::SEL;

// Listing by index, for a host without the session arrays: how far to ask.
// Rows asked for when the host gives no visible count.
constexpr long kListingDefaultRows = 210;
// Rows asked for past the host's visible count, which may lag its list.
constexpr long kListingMarginRows = 10;
// The most rows ever asked for, whatever count the host gives.
constexpr long kListingMaxRows = 400;
// Empty rows at the top after which a list with nothing found is given up.
constexpr long kListingEmptyRowsBeforeGivingUp = 6;

using RowHook = host::Hook<Id(Id)>;
using CountHook = host::Hook<long(long)>;

// Re-entrancy: the remapping calls the host's getters, which must then behave
// exactly like the host's own. Held around the whole call, so a fallback to
// the host's answer still runs at depth 1.
struct DepthGuard {
  explicit DepthGuard(int& d) : depth(d) { ++depth; }
  ~DepthGuard() { --depth; }
  int& depth;
};

// The host's session at a row, through a stored original.
Id fetchAt(const RowHook& fetch, Id self, long row, long section) {
  return fetch.original(self, fetch.selector(), rt::indexPath(row, section));
}

long hostCount(const CountHook& count, Id self, long section) {
  return count.installed() ? count.original(self, count.selector(), section) : 0;
}

// The settings revision a row map must also match: only a filter that asks
// the settings for each name (before the first unlock) follows them between
// refreshes.
std::uint64_t filterRevision() {
  return sessionState().filter->byGate ? core::QBConfig::shared().revision() : 0;
}

RowMapKey mapKey(const RowHook& fetch, Id self, long section, long n) {
  return {&fetch, self, section, n, n, sessionState().rowMapFlushes, filterRevision()};
}

// The filter's test over one walk, each entry class's keys learned once.
struct HidesSession {
  host::UsernameReader username;
  bool operator()(Id session) { return sessionState().filter->hides(username(session)); }
};

// A row getter over the host's rows: the visible row is mapped onto the
// host's index through the family's row map over the host's sessions
// (`fetch`) up to the host's count (`count`), then answered by the hook's
// original for that index.
Id remappedRow(sys::ExLine exLine, const RowHook& hook, Id self, SEL cmd, Id indexPath,
               const CountHook& count, const RowHook& fetch, RowMap& rows) {
  SessionHooksState& s = sessionState();
  if (!QBSessionHooks::filterActive() || s.depth != 0 || !rt::isIndexPath(indexPath))
    return hook.originalOr(self, cmd, indexPath);
  DepthGuard guard(s.depth);
  return hook.run(
      exLine,
      [&](RowHook::Original& original) -> Id {
        long section = rt::indexPathSection(indexPath);
        long n = hostCount(count, self, section);
        if (!fetch.installed()) throw rt::Exception("QBNoFetch", "no session getter");
        long row = rows.hostRow(
            mapKey(fetch, self, section, n), sys::mediaTime(), rt::indexPathRow(indexPath),
            [&](long i) { return fetchAt(fetch, self, i, section); }, HidesSession{});
        if (row < 0) return nullptr;
        return original(rt::indexPath(row, section));
      },
      self, cmd, indexPath);
}

// --- MainFrameLogicController

const RowHook& logicFetch() { return sessionState().getSessionInfoAtIndexPath; }

Id getSessionInfoAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  return remappedRow("[QB] MainFrameLogicController getSessionInfoAtIndexPath: ex: %@",
                     s.getSessionInfoAtIndexPath, self, cmd, indexPath, s.getSessionCountForSection,
                     logicFetch(), s.logicRows);
}

Id getCellDataAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  const RowHook& fetch =
      s.getSessionInfoAtIndexPath.installed() ? logicFetch() : s.getCellDataAtIndexPath;
  return remappedRow("[QB] MainFrameLogicController getCellDataAtIndexPath: ex: %@",
                     s.getCellDataAtIndexPath, self, cmd, indexPath, s.getSessionCountForSection,
                     fetch, s.logicRows);
}

// A count getter: the host's count first, then the rows left once the secret
// sessions are taken out, from the family's row map; a failure answers with
// the host's count. Only the logic controller's count is cached.
long filteredSessionCount(sys::ExLine exLine, const CountHook& hook, const RowHook& fetch,
                          bool cached, RowMap& rows, Id self, SEL cmd, long section) {
  SessionHooksState& s = sessionState();
  return hook.run(
      exLine,
      [&](CountHook::Original& original) -> long {
        long n = original(section);
        if (!QBSessionHooks::filterActive() || s.depth != 0 || !fetch.installed()) return n;
        double now = sys::mediaTime();
        if (cached && s.cachedSection == section && s.cachedCount >= 0 &&
            now - s.cachedAt < kCountCacheLife_s)
          return long(s.cachedCount);
        DepthGuard guard(s.depth);
        long filtered =
            n < 1 ? 0
                  : rows.shownCount(
                        mapKey(fetch, self, section, n), now,
                        [&](long i) { return fetchAt(fetch, self, i, section); }, HidesSession{});
        if (cached) s.cachedSection = section, s.cachedCount = filtered, s.cachedAt = now;
        return filtered;
      },
      self, cmd, section);
}

long getSessionCountForSection(Id self, SEL cmd, long section) {
  SessionHooksState& s = sessionState();
  return filteredSessionCount("[QB] MainFrameLogicController getSessionCountForSection: ex: %@",
                              s.getSessionCountForSection, logicFetch(), true, s.logicRows, self,
                              cmd, section);
}

// --- NewMainFrameViewController

const RowHook& viewFetch() { return sessionState().logicGetSessionAtIndexPath; }

Id logicGetSessionAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  return remappedRow("[QB] NewMainFrameViewController logicGetSessionAtIndexPath: ex: %@",
                     s.logicGetSessionAtIndexPath, self, cmd, indexPath, s.logicGetCountForSection,
                     viewFetch(), s.viewRows);
}

Id logicGetCellDataAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  const RowHook& fetch =
      s.logicGetSessionAtIndexPath.installed() ? viewFetch() : s.logicGetCellDataAtIndexPath;
  return remappedRow("[QB] NewMainFrameViewController logicGetCellDataAtIndexPath: ex: %@",
                     s.logicGetCellDataAtIndexPath, self, cmd, indexPath, s.logicGetCountForSection,
                     fetch, s.viewRows);
}

long logicGetCountForSection(Id self, SEL cmd, long section) {
  SessionHooksState& s = sessionState();
  return filteredSessionCount("[QB] NewMainFrameViewController logicGetCountForSection: ex: %@",
                              s.logicGetCountForSection, viewFetch(), false, s.viewRows, self, cmd,
                              section);
}

long numberOfRowsInSection(Id self, SEL cmd, Id tableView, long section) {
  SessionHooksState& s = sessionState();
  if (QBSessionHooks::filterActive() && s.depth == 0 && s.logicGetCountForSection.installed())
    return logicGetCountForSection(self, s.logicGetCountForSection.selector(), section);
  return s.numberOfRowsInSection.originalOr(self, cmd, tableView, section);
}

// --- MainSessionMgr (class method)

bool canShowInMainFrame(Id self, SEL cmd, Id arg) {
  SessionHooksState& s = sessionState();
  return s.canShowInMainFrame.run(
      "[QB] MainSessionMgr canShowInMainFrame: ex: %@",
      [&](host::Hook<bool(Id)>::Original& original) {
        // Asked from the host's other threads too: the filter taken whole.
        std::shared_ptr<const Filter> f = currentFilter();
        if (f->active && f->hides(QBRuntime::usernameFrom(arg))) return false;
        return original(arg);
      },
      self, cmd, arg);
}

void collect(Id list, std::vector<std::string>& out) {
  if (!rt::isArray(list)) return;
  for (Id e : rt::elements(list)) {
    std::string u = QBRuntime::usernameFrom(e);
    if (!u.empty() && std::find(out.begin(), out.end(), u) == out.end()) out.push_back(u);
  }
}

}  // namespace

bool Filter::hides(const std::string& username) const {
  if (username.empty()) return false;
  if (byGate) return core::QBConfig::shared().isSecretUser(username);
  return secrets.count(username) != 0;
}

// Main-thread readers: the main thread is the only writer, so they read the
// published filter without taking it.
bool QBSessionHooks::isSecretSession(Id session) {
  return sessionState().filter->hides(QBRuntime::usernameFrom(session));
}

bool QBSessionHooks::filterActive() { return sessionState().filter->active; }

void QBSessionHooks::refreshFilterCache() {
  SessionHooksState& s = sessionState();
  core::QBConfig& config = core::QBConfig::shared();
  auto next = std::make_shared<Filter>();
  next->secrets = config.secretSnapshot();
  next->byGate = config.waitingForProtectedData();
  bool any = next->byGate ? config.secretCount() > 0 : !next->secrets.empty();
  next->active = any && (!config.unlocked() || s.away);
  std::shared_ptr<const Filter> published = next;
  {
    std::lock_guard lock(s.filterMutex);
    s.filter = published;
  }
  s.cachedSection = std::numeric_limits<std::int64_t>::max();
  s.cachedCount = -1;
  flushRowMaps();
  for (const FilterListener& listener : s.filterListeners)
    listener(published->secrets, published->active);
}

void QBSessionHooks::addFilterListener(FilterListener listener) {
  sessionState().filterListeners.push_back(std::move(listener));
}

void installSessionFilterHooks() {
  SessionHooksState& s = sessionState();
  if (s.canShowInMainFrame.setClassMethod(rt::getClass("MainSessionMgr"),
                                          "canShowInMainFrame:", canShowInMainFrame))
    sys::log("[QB] +canShowInMainFrame: OK");
  if (rt::Class logic = rt::getClass("MainFrameLogicController")) {
    s.getSessionInfoAtIndexPath.replace(logic,
                                        "getSessionInfoAtIndexPath:", getSessionInfoAtIndexPath);
    s.getCellDataAtIndexPath.replace(logic, "getCellDataAtIndexPath:", getCellDataAtIndexPath);
    s.getSessionCountForSection.replace(logic,
                                        "getSessionCountForSection:", getSessionCountForSection);
  }
  if (rt::Class vc = rt::getClass(kMainFrameClass)) {
    s.logicGetCountForSection.replace(vc, "logicGetCountForSection:", logicGetCountForSection);
    s.logicGetSessionAtIndexPath.replace(vc,
                                         "logicGetSessionAtIndexPath:", logicGetSessionAtIndexPath);
    s.logicGetCellDataAtIndexPath.replace(
        vc, "logicGetCellDataAtIndexPath:", logicGetCellDataAtIndexPath);
    s.numberOfRowsInSection.replace(vc, "tableView:numberOfRowsInSection:", numberOfRowsInSection);
  }
}

Id QBSessionHooks::sessionMgr() { return QBRuntime::serviceNamed("MMNewSessionMgr"); }
Id QBSessionHooks::mainSessionMgr() { return QBRuntime::serviceNamed("MainSessionMgr"); }

void QBSessionHooks::setLastListPath(std::string path) {
  sessionState().lastListPath = std::move(path);
}
std::string QBSessionHooks::lastListPath() { return sessionState().lastListPath; }

std::vector<std::string> QBSessionHooks::listSessionUsernames() {
  std::vector<std::string> out;
  try {
    if (Id mgr = mainSessionMgr()) {
      // An undefined key raises here like any other failure and ends the listing.
      for (const char* key : {"normalSessions", "topSessions", "allTopSessions"})
        collect(rt::valueForKey(mgr, key), out);
      if (!out.empty()) {
        setLastListPath("MainSessionMgr");
        return out;
      }
      long limit = kListingDefaultRows;
      if (rt::respondsTo(mgr, rt::sel("visibleNormalSessionCount"))) {
        long v = rt::send<long>(mgr, "visibleNormalSessionCount");
        limit = v >= 1 ? v + kListingMarginRows : kListingDefaultRows;
      }
      if (rt::respondsTo(mgr, rt::sel("getNormalSessionAtIndex:"))) {
        for (long i = 0; i < std::min(limit, kListingMaxRows); ++i) {
          Id session = rt::send<Id>(mgr, "getNormalSessionAtIndex:", i);
          if (!session && i >= kListingEmptyRowsBeforeGivingUp && out.empty()) break;
          collect(rt::array(session ? std::vector<Id>{session} : std::vector<Id>{}), out);
        }
        if (!out.empty()) {
          setLastListPath("getNormalAt");
          return out;
        }
      }
    }
    Id mgr = sessionMgr();
    if (!mgr) {
      setLastListPath("mgr-nil");
      return out;
    }
    collect(rt::ivarNamed(mgr, "m_arrSessionInfo"), out);
    setLastListPath(out.empty() ? "empty" : "m_arrSessionInfo");
  } catch (...) {
    host::logCaught("[QB] MainSessionMgr session listing ex: %@");
    setLastListPath(rt::currentExceptionName());
  }
  return out;
}

std::vector<SessionItem> QBSessionHooks::listSessionItems() {
  std::vector<SessionItem> items;
  for (const std::string& u : listSessionUsernames()) {
    host::QBContactInfo info = host::QBContactInfo::infoForUsername(u);
    items.push_back({info.username.empty() ? u : info.username,
                     info.displayName.empty() ? u : info.displayName, info.nickname, info.remark,
                     info.avatar});
  }
  return items;
}

}  // namespace hiding
