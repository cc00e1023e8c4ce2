// Darwin notifications on the simulated device: every process on it shares
// the device's record of how often each name was posted.
#include "sys/darwin_notify.hpp"

#include "sim/process.hpp"

namespace sys {

void postDarwinNotification(const std::string& name) {
  sim::currentProcess().device().postDarwinNotification(name);
}

int watchDarwinNotification(const std::string& name) {
  return sim::currentProcess().device().watchDarwinNotification(name);
}

bool darwinNotificationPosted(int token) {
  return token < 0 || sim::currentProcess().device().darwinNotificationPosted(token);
}

}  // namespace sys
