// The blocks of the system frameworks on iOS: a completion handler is a block
// void (^)(NSError *) that the system calls where it takes a request out of
// the host's hands, and later on a queue of its own where it reports a
// donation or an index write; the fetch of what Notification Center holds
// answers a block on the framework's queue. What the host's block raises
// reaches the caller as rt::Exception; nothing leaves a block we hand to the
// system.
#include "sys/user_notifications.hpp"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>
#include <dispatch/dispatch.h>

#include "bridge.h"

namespace sys {

void callNotificationCompletion(rt::Id completionHandler, rt::Id error) {
  auto handler = (void (^)(NSError*))ios::object(completionHandler);
  if (!handler) return;
  NSError* e = ios::object(error);
  ios::translating([&] { handler(e); });
}

void callCompletionLater(rt::Id completionHandler) {
  void (^handler)(NSError*) = (void (^)(NSError*))ios::object(completionHandler);
  if (!handler) return;
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_UTILITY, 0), ^{
    ios::shielded("completion", [&] { ios::translating([&] { handler(nil); }); });
  });
}

void getDeliveredNotifications(rt::Id center, std::function<void(rt::Id notifications)> handler) {
  UNUserNotificationCenter* c = ios::object(center);
  ios::translating([&] {
    [c getDeliveredNotificationsWithCompletionHandler:^(NSArray* list) {
      ios::shielded("delivered notifications", [&] { handler(ios::handle(list)); });
    }];
  });
}

}  // namespace sys
