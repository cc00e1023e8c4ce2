// The process-wide state of the main-list hooks: the filter snapshot, the
// one-entry count cache, the re-entrancy depth, the stored originals, and the
// refresh throttles. Main thread only.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <unordered_set>

#include "core/process_state.hpp"
#include "rt/types.hpp"

namespace hiding {

struct SessionHooksState {
  std::unordered_set<std::string> snapshot;
  bool filterActive = false;
  std::int64_t cachedSection = std::numeric_limits<std::int64_t>::max();
  std::int64_t cachedCount = -1;
  double cachedAt = 0;
  int depth = 0;

  rt::IMP canShowInMainFrame = nullptr;
  rt::IMP getSessionInfoAtIndexPath = nullptr;
  rt::IMP getCellDataAtIndexPath = nullptr;
  rt::IMP getSessionCountForSection = nullptr;
  rt::IMP logicGetCountForSection = nullptr;
  rt::IMP logicGetSessionAtIndexPath = nullptr;
  rt::IMP logicGetCellDataAtIndexPath = nullptr;
  rt::IMP numberOfRowsInSection = nullptr;

  std::string lastListPath = "?";

  bool installed = false;
  bool reloadBusy = false;
  double lastSoftReloadAt = 0;
  bool applyBusy = false;
  double lastForceApplyAt = 0;
  double lastMainAppearReloadAt = 0;
};

inline SessionHooksState& sessionState() { return core::state<SessionHooksState>(); }

// Installs the eight list hooks (the filter).
void installSessionFilterHooks();

}  // namespace hiding
