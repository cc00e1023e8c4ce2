// QBPanelController: the hidden control panel, an inset-grouped table of every
// setting and of the secret list. It is a runtime class (a subclass of
// UITableViewController) so that the About-page entry, below it, reaches
// `presentFrom:` by name. It keeps no settings of its own: every row reads
// QBConfig when drawn, and every change is saved at once.
#pragma once

#include <functional>
#include <limits>
#include <string>

#include "rt/types.hpp"
#include "ui/drawing.hpp"

namespace panel {

struct QBPanelController {
  // Registers the runtime classes "QBPanelController" and
  // "QBContactPickController" (once per process).
  static void registerRuntimeClass();

  // The top controller: the key window's root through presentations, into a
  // navigation controller's visible one.
  static rt::Id topVC();
  // Authenticates for the panel, then opens it (nil: on topVC).
  static void presentFrom(rt::Id target);
  // Opens the panel on `target` without authentication.
  static void presentPanelOn(rt::Id target);

  // Instance methods; `self` is the panel.
  static void closeAndLock(rt::Id self);
  static void reload(rt::Id self);
  static void showTip(rt::Id self, const std::string& message);
  static void pickFromSessions(rt::Id self);
  // After the secret list changed: the host's call auto-ignore, the lists'
  // filter, and the schedule, which re-applies at once (a secret added while a
  // stale reveal lingers must not show until the next tick).
  static void secretListChanged();
  // A 30-point rounded square of `bg` with the symbol centred, in `tint`.
  static rt::Id iconImage(const std::string& symbol, ui::Color tint, ui::Color bg);

  // The window editor and its dialogs.
  static void editDailyWindowAtIndex(rt::Id self, long index, long start, long end, long mode,
                                     bool isAdd);
  static void pickMinute(rt::Id self, long minutes, const std::string& title,
                         std::function<void(long)> handler);
  static void pickWindowMode(rt::Id self, long mode, const std::string& title,
                             std::function<void(long)> handler);
  static void askText(rt::Id self, const std::string& title, bool secure,
                      const std::string& placeholder,
                      std::function<void(const std::string&)> handler);
  static void presentNextAfterDelay(std::function<void()> block);
};

inline constexpr long kNoIndex = std::numeric_limits<long>::max();  // NSIntegerMax: a new window
inline constexpr long kSections = 8;
inline constexpr double kRowHeight = 54;
inline constexpr double kSecretRowHeight = 68;
inline constexpr double kAuthDelay_s = 0.35;
inline constexpr double kBusyRetry_s = 0.45;
inline constexpr double kCloseReloadDelay_s = 0.5;
inline constexpr double kNextDialogDelay_s = 0.4;
inline constexpr long kNewWindowStart = 720;
inline constexpr long kNewWindowEnd = 840;
inline constexpr long kMaxWindows = 3;
inline constexpr std::size_t kMinPasswordLength = 4;

}  // namespace panel
