// The completion handler of a notification request on iOS is a block
// void (^)(NSError *); the system calls it where it takes a request out of
// the host's hands. What the host's block raises reaches the caller as
// rt::Exception.
#include "sys/user_notifications.hpp"

#import <Foundation/Foundation.h>

#include "bridge.h"

namespace sys {

void callNotificationCompletion(rt::Id completionHandler, rt::Id error) {
  auto handler = (void (^)(NSError*))ios::object(completionHandler);
  if (!handler) return;
  NSError* e = ios::object(error);
  ios::translating([&] { handler(e); });
}

}  // namespace sys
