// QBEntryHooks: the panel's only way in. Five quick taps on the host's About
// page (its version label, the middle of its navigation bar, or the top band
// of the page) open the panel, which lies above this layer and is reached by
// its runtime class's name.
#pragma once

#include <string>

#include "rt/types.hpp"

namespace triggers {

struct QBEntryHooks {
  // Hooks the About page's viewDidLoad, viewDidAppear: and viewWillDisappear:,
  // once per process.
  static void install();
  // One tap of a series, from the About page `page`.
  static void onSecretTapFrom(rt::Id page);
  // Whether a label's text marks it as the version label.
  static bool isVersionText(const std::string& text, const std::string& versionHint);
  // Attaches the three recognizers to the page, each once.
  static void attachAboutEntryGestures(rt::Id page);
  // qb_walkAttachVersionLabels:versionHint:depth:
  static void walkAttachVersionLabels(rt::Id page, rt::Id view, const std::string& versionHint,
                                      long depth);
  // The series so far (process-wide).
  static long tapCount();
};

inline constexpr double kEntryTapGap = 1.3;
inline constexpr long kEntryTapsNeeded = 5;
inline constexpr double kEntryNavHalfWidth = 100.0;
inline constexpr double kEntryPageTopBand = 280.0;
inline constexpr long kEntryWalkDepth = 10;
inline constexpr double kEntryLoadAttachDelay = 0.4;
inline constexpr double kEntryAppearAttachDelay = 0.6;

}  // namespace triggers
