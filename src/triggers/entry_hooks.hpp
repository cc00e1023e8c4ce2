// QBEntryHooks: the hidden entry on the About page.
#pragma once

namespace triggers {

struct QBEntryHooks {
  static void install();
};

}  // namespace triggers
