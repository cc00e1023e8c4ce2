// QBContactHooks: the inert contact-hook switch.
#pragma once

namespace hiding {

struct QBContactHooks {
  static void install();
};

}  // namespace hiding
