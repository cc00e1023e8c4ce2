// A notification as the system presents it, whoever asked for it: an app's
// request or a remote notification the system received for an app.
#pragma once

#include <string>

#include "base/value.hpp"

namespace sim {

class Notices;
class SystemRecords;

struct SystemNotification {
  std::string bundleIdentifier;  // the app it is from
  std::string identifier;        // the request's; a later one with the same replaces it
  std::string title, body, threadIdentifier;
  base::Value userInfo;
  bool sound = true;  // the default sound; false: silent
};

// What the person holding the phone gets of it: the system banner, its sound,
// and an entry in Notification Center, on the announcement open now.
void presentDirectly(Notices& notices, SystemRecords& records, const SystemNotification& n);

}  // namespace sim
