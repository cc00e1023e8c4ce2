// The pieces of the system frameworks that are blocks rather than message
// sends: the completion handler of -[UNUserNotificationCenter
// addNotificationRequest:withCompletionHandler:] and of the donation and
// index calls (a block void (^)(NSError *)), and the fetch of what
// Notification Center holds, whose answer comes to a block.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace sys {

// completionHandler(error). Nothing for a nil handler; any thread.
void callNotificationCompletion(rt::Id completionHandler, rt::Id error);

// dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
// completionHandler(nil); }): success, reported later on a background queue as
// the system reports its own. Nothing for a nil handler.
void callCompletionLater(rt::Id completionHandler);

// -[UNUserNotificationCenter getDeliveredNotificationsWithCompletionHandler:]
// on `center`, with a block that hands `handler` the NSArray of
// UNNotification. The system calls it later on a background queue.
void getDeliveredNotifications(rt::Id center, std::function<void(rt::Id notifications)> handler);

}  // namespace sys
