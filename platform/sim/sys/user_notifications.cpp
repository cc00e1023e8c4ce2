// Completion handlers of the simulated UserNotifications framework: the
// framework's blocks called now or later on its own queue, and the
// delivered notifications asked for with a handler.
#include "sys/user_notifications.hpp"

#include "rt/send.hpp"
#include "sim/frameworks/user_notifications.hpp"

namespace sys {

void callNotificationCompletion(rt::Id completionHandler, rt::Id error) {
  sim::callCompletionBlock(completionHandler, error);
}

void callCompletionLater(rt::Id completionHandler) {
  if (!completionHandler) return;
  sim::onSystemQueue(
      [completionHandler] { callNotificationCompletion(completionHandler, nullptr); });
}

void getDeliveredNotifications(rt::Id center, std::function<void(rt::Id)> handler) {
  rt::send<void>(center, "getDeliveredNotificationsWithCompletionHandler:",
                 sim::makeCompletionBlock(std::move(handler)));
}

}  // namespace sys
