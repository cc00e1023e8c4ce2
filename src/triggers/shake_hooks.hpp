// QBShakeHooks: turns a shake into a hide (when revealed) or a reveal with
// authentication (when hidden), in manual mode. Start-up reaches it only by
// looking its runtime class up by name, so the class is registered with the
// runtime when the library loads.
#pragma once

namespace triggers {

struct QBShakeHooks {
  // Starts the sensors, once per process.
  static void install();
  // Acts on one detected shake (main queue).
  static void handleShake();
  // One sensor sample's magnitude, in g, through the filter (sensor queue).
  static void sample(double magnitude);
  // Registers the runtime class "QBShakeHooks" with its class method install.
  static void registerRuntimeClass();
};

inline constexpr double kShakeSampleInterval_s = 0.04;
inline constexpr double kShakeMagnitude_g = 0.09;
inline constexpr double kShakeJump_g = 0.08;
inline constexpr double kShakeSpacing_s = 0.7;
inline constexpr double kShakeRevealHold_s = 0.5;

}  // namespace triggers
