// QBUnlock: the hide and reveal actions and the long-press trigger.
#pragma once

namespace triggers {

struct QBUnlock {
  static void installLongPressWake();
};

}  // namespace triggers
