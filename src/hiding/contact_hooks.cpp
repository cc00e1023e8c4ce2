#include "hiding/contact_hooks.hpp"

#include "sys/log.hpp"

namespace hiding {

namespace {
constexpr bool kContactHooksEnabled = false;
}

void QBContactHooks::install() { installWithFlag(kContactHooksEnabled); }

void QBContactHooks::installWithFlag(bool enabled) {
  if (!enabled) {
    sys::log("[QB][stable] contact hooks DISABLED");
    return;
  }
  sys::log("[QB][stable] contact hooks flag on but not implemented in stable build");
}

}  // namespace hiding
