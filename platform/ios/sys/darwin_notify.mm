// Darwin notifications on iOS: libSystem's notify(3).
#include "sys/darwin_notify.hpp"

#include <notify.h>

namespace sys {

void postDarwinNotification(const std::string& name) { notify_post(name.c_str()); }

int watchDarwinNotification(const std::string& name) {
  int token = -1;
  return notify_register_check(name.c_str(), &token) == NOTIFY_STATUS_OK ? token : -1;
}

bool darwinNotificationPosted(int token) {
  int posted = 1;
  if (token < 0 || notify_check(token, &posted) != NOTIFY_STATUS_OK) return true;
  return posted != 0;
}

}  // namespace sys
