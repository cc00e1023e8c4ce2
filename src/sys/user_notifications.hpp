// The one piece of UserNotifications that is not a message send: the
// completion handler of -[UNUserNotificationCenter
// addNotificationRequest:withCompletionHandler:], a block void (^)(NSError *).
#pragma once

#include "rt/types.hpp"

namespace sys {

// completionHandler(error). Nothing for a nil handler; any thread.
void callNotificationCompletion(rt::Id completionHandler, rt::Id error);

}  // namespace sys
