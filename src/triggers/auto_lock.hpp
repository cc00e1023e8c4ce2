// QBAutoLock: hides the secrets again when the app leaves the foreground.
#pragma once

namespace triggers {

struct QBAutoLock {
  static void install();
};

}  // namespace triggers
