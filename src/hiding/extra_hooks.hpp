// QBExtraHooks: hiding secrets from contacts, search, Moments and forwarding.
#pragma once

namespace hiding {

struct QBExtraHooks {
  static void install();
};

}  // namespace hiding
