// The simulated system frameworks around notifications: UserNotifications
// (the notification centre, contents, sounds and requests; a request added
// shows the system banner and plays its content's sound), AudioToolbox's
// system sounds (4095 vibrates), and completion-handler blocks. What reaches
// the user is recorded on the device's notices.
//
// Kinder than a phone: a request points at its identifier, content and
// trigger without retaining them, and requestWithIdentifier:content:trigger:
// hands its request back owned instead of autoreleased, so requests (like the
// other value objects here) are never freed and an unbalanced release of one
// is not caught. A content's own retain count is kept: one its maker never
// releases stays alive, and the lifetime tests count those.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace sim {

class Runtime;

void registerUserNotifications(Runtime& rtm);
// A block void (^)(id) running `body` (an NSError, or the array a fetch hands back).
rt::Id makeCompletionBlock(std::function<void(rt::Id error)> body);
// Runs a block made by makeCompletionBlock with `error`; any other object is
// left alone.
void callCompletionBlock(rt::Id block, rt::Id error);
// Runs `work` off the main thread after the current turn of the main queue, as
// the frameworks call their completion handlers on a queue of their own.
void onSystemQueue(std::function<void()> work);

}  // namespace sim
