// QBShakeHooks: the shake trigger. Start-up reaches it only by looking its
// runtime class up by name, so the class is registered with the runtime when
// the library loads.
#pragma once

namespace triggers {

struct QBShakeHooks {
  static void install();
  // Registers the runtime class "QBShakeHooks" with its class method install.
  static void registerRuntimeClass();
};

}  // namespace triggers
