// Pictures of what the system shows outside the app, from what it keeps of
// it: the lock screen with the notifications Notification Center holds, and
// the share sheet with the people it suggests. Drawn in the phone's layout,
// not from a view tree (the app has none there).
#pragma once

#include <string>
#include <vector>

#include "sim/picture/screen_picture.hpp"

namespace sim::picture {

struct LockScreenNotice {
  std::string app, title, body;
};
// `absoluteTime` is the device's clock (seconds since 2001-01-01, local = UTC).
Picture drawLockScreen(const std::vector<LockScreenNotice>& notices, double absoluteTime);

struct SharePerson {
  std::string person;  // whose avatar colour it wears
  std::string name;    // as the sheet labels it
};
// The share sheet over the app, its suggestions row holding `people` in order.
Picture drawShareSheet(const std::vector<SharePerson>& people, const std::string& appName);

}  // namespace sim::picture
