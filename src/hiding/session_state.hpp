// The process-wide state of the main-list hooks: the filter snapshot, the
// one-entry count cache, the row maps, the re-entrancy depth, the stored
// originals, and the refresh throttles. Main thread only.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/config.hpp"
#include "hiding/row_map.hpp"
#include "hiding/session_hooks.hpp"
#include "host/hook.hpp"
#include "sys/process_state.hpp"
#include "rt/types.hpp"

namespace hiding {

// The secrets the filter hides, and whether it hides them now. The host asks
// its "can show" test from other threads too: the main thread publishes a new
// one whole, and a reader keeps the one it took.
struct Filter {
  std::unordered_set<std::string> secrets;
  // Before the first unlock the names are not known, only the gate's salted
  // hashes: each name the filter sees is asked of the settings instead.
  bool byGate = false;
  bool active = false;
  bool hides(const std::string& username) const;
};

struct SessionHooksState {
  std::shared_ptr<const Filter> filter = std::make_shared<const Filter>();
  std::mutex filterMutex;  // guards the pointer only, for as long as a copy takes
  std::int64_t cachedSection = std::numeric_limits<std::int64_t>::max();
  std::int64_t cachedCount = -1;
  double cachedAt = 0;
  // The row maps of the logic controller's getters and of the view
  // controller's, and how often every row map was flushed.
  RowMap logicRows, viewRows;
  std::uint64_t rowMapFlushes = 0;
  int depth = 0;

  host::Hook<bool(rt::Id)> canShowInMainFrame{true};
  host::Hook<rt::Id(rt::Id)> getSessionInfoAtIndexPath;
  host::Hook<rt::Id(rt::Id)> getCellDataAtIndexPath;
  host::Hook<long(long)> getSessionCountForSection;
  host::Hook<long(long)> logicGetCountForSection;
  host::Hook<rt::Id(rt::Id)> logicGetSessionAtIndexPath;
  host::Hook<rt::Id(rt::Id)> logicGetCellDataAtIndexPath;
  host::Hook<long(rt::Id, long)> numberOfRowsInSection;
  host::Hook<void()> mainViewDidLoad;
  host::Hook<void(bool)> mainViewWillAppear;
  host::Hook<void(bool)> mainViewDidAppear;

  std::vector<FilterListener> filterListeners;

  std::string lastListPath = "?";

  bool installed = false;
  // The app is in the background: the lists hide the secrets whatever the state.
  bool away = false;
  bool reloadBusy = false;
  double lastSoftReloadAt = 0;
  bool applyBusy = false;
  double lastForceApplyAt = 0;
  double lastMainAppearReloadAt = 0;
};

inline SessionHooksState& sessionState() { return sys::state<SessionHooksState>(); }

// QBSessionHooks::listsHideSecrets for a caller that already holds both.
inline bool listsHideSecrets(const core::QBConfig& c, const SessionHooksState& s) {
  return c.shouldHideSecrets() || (s.away && c.secretCount() > 0);
}

// For a reader off the main thread.
inline std::shared_ptr<const Filter> currentFilter() {
  SessionHooksState& s = sessionState();
  std::lock_guard lock(s.filterMutex);
  return s.filter;
}

// Every row map walks again at its next use: the host's lists may have
// changed in ways their checks cannot see (a refresh, a reload, a rebuild).
inline void flushRowMaps() { ++sessionState().rowMapFlushes; }

// Installs the eight list hooks (the filter).
void installSessionFilterHooks();

}  // namespace hiding
