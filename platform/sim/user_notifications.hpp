// The simulated system frameworks around notifications: UserNotifications
// (the notification centre, contents, sounds and requests; a request added
// shows the system banner and plays its content's sound), AudioToolbox's
// system sounds (4095 vibrates), and completion-handler blocks. What reaches
// the user is recorded on the device's notices.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace sim {

class Runtime;

void registerUserNotifications(Runtime& rtm);
// A block void (^)(NSError *) running `body`.
rt::Id makeCompletionBlock(std::function<void(rt::Id error)> body);

}  // namespace sim
