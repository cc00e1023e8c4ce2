// The motion sensors. On iOS: one CMMotionManager, device-motion updates
// (userAcceleration, gravity removed) or accelerometer updates (raw, in g),
// delivered on a serial NSOperationQueue at the given interval.
#pragma once

#include <functional>

namespace sys {

struct Acceleration {
  double x = 0, y = 0, z = 0;
};

bool deviceMotionAvailable();
bool accelerometerAvailable();
// Starts updates; the handler runs on the sensor's serial queue, once per sample.
void startDeviceMotionUpdates(double interval,
                              std::function<void(Acceleration userAcceleration)> handler);
void startAccelerometerUpdates(double interval,
                               std::function<void(Acceleration acceleration)> handler);

}  // namespace sys
