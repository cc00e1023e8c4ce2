// QBSessionHooks: keeps secret chats out of the host's main chat list while
// the secrets are hidden. It answers the list's count and row questions as if
// the secret sessions did not exist (skipping them and remapping rows onto the
// host's indices), vetoes them in the host's class-level "can show" test, and
// makes the visible lists catch up with the state: throttled soft reloads, the
// two-phase reveal, and the forced apply after a state change.
#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "rt/types.hpp"

namespace hiding {

struct SessionItem {
  std::string username, displayName, nickname, remark;
  rt::Id avatar = nullptr;
};

// Told after every refresh of the filter snapshot: the secrets, and whether
// the filter hides them now. Every path that hides the secrets or adds one
// refreshes the filter, so this is where the records kept outside the app
// learn of it. Main thread.
using FilterListener =
    std::function<void(const std::unordered_set<std::string>& secrets, bool hiding)>;

struct QBSessionHooks {
  // Installs the hooks and observers, once per process.
  static void install();
  static void refreshFilterCache();
  static void addFilterListener(FilterListener listener);
  static void softReloadMainFrame();
  static void reloadMainFrame();
  static void softReloadMainFrameForce(bool force);
  static void revealSecretsNow();
  static void forceApplyVisibility();
  // Whether the lists leave the secrets out: they are hidden, or the app is in
  // the background. What the phone shows of an app that is away (its picture
  // in the app switcher) must never show a secret, in any mode, while the
  // reveal state and the message gating stay as they are.
  static bool listsHideSecrets();
  // Announces that the hidden state was applied; deliberately does nothing.
  static void applyNativeHideState();

  static rt::Id sessionMgr();
  static rt::Id mainSessionMgr();
  static std::vector<std::string> listSessionUsernames();
  static std::vector<SessionItem> listSessionItems();
  static void setLastListPath(std::string path);
  static std::string lastListPath();

  // The visible-to-host row mapping and the filtered count, over a host count
  // and a fetch of the host's session at an index, walked from the top: what
  // the row maps must answer. Exposed for tests.
  template <typename Fetch>
  static long mapRow(long row, long hostCount, Fetch fetch);
  template <typename Fetch>
  static long filteredCount(long hostCount, Fetch fetch);
  static bool isSecretSession(rt::Id session);
  static bool filterActive();
};

template <typename Fetch>
long QBSessionHooks::mapRow(long row, long hostCount, Fetch fetch) {
  if (hostCount < 1) return -1;
  long visible = 0;
  for (long i = 0; i < hostCount; ++i) {
    if (isSecretSession(fetch(i))) continue;
    if (visible == row) return i;
    ++visible;
  }
  return -1;
}

template <typename Fetch>
long QBSessionHooks::filteredCount(long hostCount, Fetch fetch) {
  long n = 0;
  for (long i = 0; i < hostCount; ++i)
    if (!isSecretSession(fetch(i))) ++n;
  return n;
}

// How long a counted main list is trusted before the host is asked again.
inline constexpr double kCountCacheLife_s = 0.45;
// The least time between two soft reloads, two forced applies, and two
// reloads on the main list's appearance.
inline constexpr double kSoftReloadThrottle_s = 0.75;
inline constexpr double kForceApplyThrottle_s = 1.0;
inline constexpr double kAppearanceThrottle_s = 0.8;

inline constexpr const char* kMainFrameClass = "NewMainFrameViewController";
inline constexpr const char* kContactsScreenClass = "ContactsViewController";

}  // namespace hiding
