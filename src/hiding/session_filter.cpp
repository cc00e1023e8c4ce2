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

using rt::Id;
using rt::SEL;
using host::QBRuntime;

constexpr double kCountCacheLife = 0.45;

// Re-entrancy: the remapping calls the host's getters, which must then behave
// exactly like the host's own.
struct DepthGuard {
  explicit DepthGuard(int& d) : depth(d) { ++depth; }
  ~DepthGuard() { --depth; }
  int& depth;
};

Id fetchAt(rt::IMP fetch, Id self, const char* selector, long row, long section) {
  return rt::call<Id>(fetch, self, rt::sel(selector), rt::indexPath(row, section));
}

// A stored original and the selector it answers.
struct Getter {
  rt::IMP imp;
  const char* sel;
};

// A row getter over the host's rows: the visible row is mapped onto the
// host's index by walking the host's sessions (`fetch`) up to the host's
// count (`count`), then answered by `original` for that index.
Id remappedRow(Id self, SEL cmd, Id indexPath, rt::IMP original, Getter count, Getter fetch) {
  SessionHooksState& s = sessionState();
  if (!s.filterActive || s.depth != 0 || !rt::isIndexPath(indexPath)) return rt::call<Id>(original, self, cmd, indexPath);
  try {
    DepthGuard guard(s.depth);
    long section = rt::indexPathSection(indexPath);
    long n = count.imp ? rt::call<long>(count.imp, self, rt::sel(count.sel), section) : 0;
    if (!fetch.imp) throw rt::Exception("QBNoFetch", "no session getter");
    long host = QBSessionHooks::mapRow(rt::indexPathRow(indexPath), n,
                                       [&](long i) { return fetchAt(fetch.imp, self, fetch.sel, i, section); });
    if (host < 0) return nullptr;
    return rt::call<Id>(original, self, cmd, rt::indexPath(host, section));
  } catch (...) {
  }
  return rt::call<Id>(original, self, cmd, indexPath);
}

// --- MainFrameLogicController

Getter logicCount() { return {sessionState().getSessionCountForSection, "getSessionCountForSection:"}; }

Id getSessionInfoAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  return remappedRow(self, cmd, indexPath, s.getSessionInfoAtIndexPath, logicCount(),
                     {s.getSessionInfoAtIndexPath, "getSessionInfoAtIndexPath:"});
}

Id getCellDataAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  Getter fetch = s.getSessionInfoAtIndexPath ? Getter{s.getSessionInfoAtIndexPath, "getSessionInfoAtIndexPath:"}
                                             : Getter{s.getCellDataAtIndexPath, "getCellDataAtIndexPath:"};
  return remappedRow(self, cmd, indexPath, s.getCellDataAtIndexPath, logicCount(), fetch);
}

long getSessionCountForSection(Id self, SEL cmd, long section) {
  SessionHooksState& s = sessionState();
  long n = s.getSessionCountForSection ? rt::call<long>(s.getSessionCountForSection, self, cmd, section) : 0;
  if (!s.filterActive || s.depth != 0 || !s.getSessionInfoAtIndexPath) return n;
  double now = sys::mediaTime();
  if (s.cachedSection == section && s.cachedCount >= 0 && now - s.cachedAt < kCountCacheLife) return long(s.cachedCount);
  try {
    DepthGuard guard(s.depth);
    long filtered = n < 1 ? 0 : QBSessionHooks::filteredCount(n, [&](long i) {
      return fetchAt(s.getSessionInfoAtIndexPath, self, "getSessionInfoAtIndexPath:", i, section);
    });
    s.cachedSection = section, s.cachedCount = filtered, s.cachedAt = now;
    return filtered;
  } catch (...) {
    return n;
  }
}

// --- NewMainFrameViewController

Getter viewCount() { return {sessionState().logicGetCountForSection, "logicGetCountForSection:"}; }

Id logicGetSessionAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  return remappedRow(self, cmd, indexPath, s.logicGetSessionAtIndexPath, viewCount(),
                     {s.logicGetSessionAtIndexPath, "logicGetSessionAtIndexPath:"});
}

Id logicGetCellDataAtIndexPath(Id self, SEL cmd, Id indexPath) {
  SessionHooksState& s = sessionState();
  Getter fetch = s.logicGetSessionAtIndexPath
                     ? Getter{s.logicGetSessionAtIndexPath, "logicGetSessionAtIndexPath:"}
                     : Getter{s.logicGetCellDataAtIndexPath, "logicGetCellDataAtIndexPath:"};
  return remappedRow(self, cmd, indexPath, s.logicGetCellDataAtIndexPath, viewCount(), fetch);
}

long logicGetCountForSection(Id self, SEL cmd, long section) {
  SessionHooksState& s = sessionState();
  long n = s.logicGetCountForSection ? rt::call<long>(s.logicGetCountForSection, self, cmd, section) : 0;
  if (!s.filterActive || s.depth != 0 || !s.logicGetSessionAtIndexPath) return n;
  s.depth = 1;  // set, not incremented: this is the outermost call
  try {
    long filtered = n < 1 ? 0 : QBSessionHooks::filteredCount(n, [&](long i) {
      return fetchAt(s.logicGetSessionAtIndexPath, self, "logicGetSessionAtIndexPath:", i, section);
    });
    --s.depth;
    return filtered;
  } catch (...) {
    --s.depth;
    return n;
  }
}

long numberOfRowsInSection(Id self, SEL cmd, Id tableView, long section) {
  SessionHooksState& s = sessionState();
  if (s.filterActive && s.depth == 0 && s.logicGetCountForSection)
    return logicGetCountForSection(self, rt::sel("logicGetCountForSection:"), section);
  return s.numberOfRowsInSection ? rt::call<long>(s.numberOfRowsInSection, self, cmd, tableView, section) : 0;
}

// --- MainSessionMgr (class method)

bool canShowInMainFrame(Id self, SEL cmd, Id arg) {
  SessionHooksState& s = sessionState();
  if (s.filterActive) {
    try {
      if (QBSessionHooks::isSecretSession(arg)) return false;
    } catch (...) {
    }
  }
  return s.canShowInMainFrame ? rt::call<bool>(s.canShowInMainFrame, self, cmd, arg) : true;
}

void collect(Id list, std::vector<std::string>& out) {
  if (!rt::isArray(list)) return;
  for (Id e : rt::elements(list)) {
    std::string u = QBRuntime::usernameFrom(e);
    if (!u.empty() && std::find(out.begin(), out.end(), u) == out.end()) out.push_back(u);
  }
}

}  // namespace

bool QBSessionHooks::isSecretSession(Id session) {
  std::string u = QBRuntime::usernameFrom(session);
  return !u.empty() && sessionState().snapshot.count(u) != 0;
}

bool QBSessionHooks::filterActive() { return sessionState().filterActive; }

void QBSessionHooks::refreshFilterCache() {
  SessionHooksState& s = sessionState();
  core::QBConfig& config = core::QBConfig::shared();
  s.snapshot = config.secretSnapshot();
  s.filterActive = !s.snapshot.empty() && !config.unlocked();
  s.cachedSection = std::numeric_limits<std::int64_t>::max();
  s.cachedCount = -1;
}

void installSessionFilterHooks() {
  SessionHooksState& s = sessionState();
  if (rt::Class mgr = rt::getClass("MainSessionMgr")) {
    if (rt::Method m = rt::getClassMethod(mgr, rt::sel("canShowInMainFrame:"))) {
      s.canShowInMainFrame = rt::methodImplementation(m);
      rt::setImplementation(m, reinterpret_cast<rt::IMP>(canShowInMainFrame));
      sys::log("[QB] +canShowInMainFrame: OK");
    }
  }
  auto replace = [](rt::Class cls, const char* sel, auto fn, rt::IMP& slot) {
    QBRuntime::replace(cls, rt::sel(sel), reinterpret_cast<rt::IMP>(fn), &slot);
  };
  if (rt::Class logic = rt::getClass("MainFrameLogicController")) {
    replace(logic, "getSessionInfoAtIndexPath:", getSessionInfoAtIndexPath, s.getSessionInfoAtIndexPath);
    replace(logic, "getCellDataAtIndexPath:", getCellDataAtIndexPath, s.getCellDataAtIndexPath);
    replace(logic, "getSessionCountForSection:", getSessionCountForSection, s.getSessionCountForSection);
  }
  if (rt::Class vc = rt::getClass(kMainFrameClass)) {
    replace(vc, "logicGetCountForSection:", logicGetCountForSection, s.logicGetCountForSection);
    replace(vc, "logicGetSessionAtIndexPath:", logicGetSessionAtIndexPath, s.logicGetSessionAtIndexPath);
    replace(vc, "logicGetCellDataAtIndexPath:", logicGetCellDataAtIndexPath, s.logicGetCellDataAtIndexPath);
    replace(vc, "tableView:numberOfRowsInSection:", numberOfRowsInSection, s.numberOfRowsInSection);
  }
}

Id QBSessionHooks::sessionMgr() { return QBRuntime::serviceNamed("MMNewSessionMgr"); }
Id QBSessionHooks::mainSessionMgr() { return QBRuntime::serviceNamed("MainSessionMgr"); }

void QBSessionHooks::setLastListPath(std::string path) { sessionState().lastListPath = std::move(path); }
std::string QBSessionHooks::lastListPath() { return sessionState().lastListPath; }

std::vector<std::string> QBSessionHooks::listSessionUsernames() {
  std::vector<std::string> out;
  try {
    if (Id mgr = mainSessionMgr()) {
      for (const char* key : {"normalSessions", "topSessions", "allTopSessions"}) collect(rt::probeKey(mgr, key), out);
      if (!out.empty()) {
        setLastListPath("MainSessionMgr");
        return out;
      }
      long limit = 210;
      if (rt::respondsTo(mgr, rt::sel("visibleNormalSessionCount"))) {
        long v = rt::send<long>(mgr, "visibleNormalSessionCount");
        limit = v >= 1 ? v + 10 : 210;
      }
      if (rt::respondsTo(mgr, rt::sel("getNormalSessionAtIndex:"))) {
        for (long i = 0; i < std::min(limit, 400L); ++i) {
          Id session = rt::send<Id>(mgr, "getNormalSessionAtIndex:", i);
          if (!session && i >= 6 && out.empty()) break;
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
    collect(rt::ivarObject(mgr, rt::getInstanceVariable(rt::classOf(mgr), "m_arrSessionInfo")), out);
    setLastListPath(out.empty() ? "empty" : "m_arrSessionInfo");
  } catch (...) {
    setLastListPath(rt::currentExceptionName());
  }
  return out;
}

std::vector<SessionItem> QBSessionHooks::listSessionItems() {
  std::vector<SessionItem> items;
  for (const std::string& u : listSessionUsernames()) {
    host::QBContactInfo info = host::QBContactInfo::infoForUsername(u);
    items.push_back({info.username.empty() ? u : info.username, info.displayName.empty() ? u : info.displayName,
                     info.nickname, info.remark, info.avatar});
  }
  return items;
}

}  // namespace hiding
