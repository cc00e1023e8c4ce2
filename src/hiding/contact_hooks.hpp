// QBContactHooks: a deliberately inert switch. Its flag is fixed off, so
// installing only says so in the log; even with the flag on, this build would
// install nothing.
#pragma once

namespace hiding {

struct QBContactHooks {
  static void install();
  // What install does for a given flag (the shipped flag is off).
  static void installWithFlag(bool enabled);
};

}  // namespace hiding
