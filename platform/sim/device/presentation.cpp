#include "sim/device/presentation.hpp"

#include "sim/device/device.hpp"

namespace sim {

void presentDirectly(Notices& notices, SystemRecords& records, const SystemNotification& n) {
  notices.banner("system");
  if (n.sound) notices.sound();
  records.deliver(
      {n.identifier, notices.openFrom(), n.title, n.body, n.threadIdentifier, n.userInfo});
}

void Device::present(const SystemNotification& n) {
  if (presenter_)
    presenter_(n);
  else
    presentDirectly(notices_, records_, n);
}

}  // namespace sim
