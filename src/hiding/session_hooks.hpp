// QBSessionHooks: the main chat list's filter, refresh and reveal.
#pragma once

namespace hiding {

struct QBSessionHooks {
  static void install();
  static void refreshFilterCache();
  static void softReloadMainFrame();
};

}  // namespace hiding
