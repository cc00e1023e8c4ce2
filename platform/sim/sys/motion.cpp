// The motion facade on the simulated device: updates are asked for here and
// fed by the simulator's `shake`, in virtual time, in sample order. Updates
// asked of a sensor the device lacks never arrive, as on a phone.
#include "sim/process.hpp"
#include "sys/motion.hpp"

namespace sys {

bool deviceMotionAvailable() {
  return sim::currentProcess().device().motion == sim::MotionSensors::Full;
}

bool accelerometerAvailable() {
  return sim::currentProcess().device().motion != sim::MotionSensors::None;
}

void startDeviceMotionUpdates(double interval, std::function<void(Acceleration)> handler) {
  if (!deviceMotionAvailable()) return;
  sim::PlatformState& p = sim::currentProcess().platform();
  p.motionFromAccelerometer = false;
  p.motionInterval = interval;
  p.motionHandler = [handler](double x, double y, double z) { handler({x, y, z}); };
}

void startAccelerometerUpdates(double interval, std::function<void(Acceleration)> handler) {
  if (!accelerometerAvailable()) return;
  sim::PlatformState& p = sim::currentProcess().platform();
  p.motionFromAccelerometer = true;
  p.motionInterval = interval;
  p.motionHandler = [handler](double x, double y, double z) { handler({x, y, z}); };
}

}  // namespace sys
