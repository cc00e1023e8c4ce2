// Every simulated system framework a process starts with, in the order their
// classes build on each other: Foundation first, then UIKit, then the
// frameworks whose classes are plain NSObjects.
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/frameworks/outside_frameworks.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "sim/frameworks/user_notifications.hpp"
#include "sim/process.hpp"

namespace sim {

void registerFrameworks(Runtime& rtm) {
  registerFoundation(rtm);
  registerUIKit(rtm);
  registerUserNotifications(rtm);
  registerIntents(rtm);
  registerSpotlight(rtm);
}

}  // namespace sim
