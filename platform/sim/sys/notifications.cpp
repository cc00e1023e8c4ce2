// Observers and posts on the current process's default notification centre.
// A post from another thread is delivered on the main queue, as the system's
// observers of the main queue see it.
#include "sys/notifications.hpp"

#include "sim/process.hpp"
#include "sys/queue.hpp"

namespace sys {

using sim::currentProcess;

ObserverToken addObserver(std::string name, Observer block) {
  return ObserverToken{currentProcess().notifications().add(std::move(name), std::move(block))};
}

void removeObserver(ObserverToken token) { currentProcess().notifications().remove(token.id); }

void postNotification(std::string name, rt::Id object, rt::Id userInfo) {
  Notification n{std::move(name), object, userInfo};
  if (isMainThread()) {
    currentProcess().notifications().post(n);
  } else {
    async([n] { currentProcess().notifications().post(n); });
  }
}

}  // namespace sys
