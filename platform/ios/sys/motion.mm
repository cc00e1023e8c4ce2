// The motion sensors on iOS: one CMMotionManager for the process, samples
// delivered on one serial NSOperationQueue.
#include "sys/motion.hpp"

#import <CoreMotion/CoreMotion.h>
#import <Foundation/Foundation.h>

#include "bridge.h"

namespace sys {
namespace {

CMMotionManager* manager() {
  static CMMotionManager* m = [CMMotionManager new];
  return m;
}

NSOperationQueue* sampleQueue() {
  static NSOperationQueue* q = [] {
    NSOperationQueue* queue = [NSOperationQueue new];
    queue.maxConcurrentOperationCount = 1;
    return queue;
  }();
  return q;
}

Acceleration of(CMAcceleration a) { return Acceleration{a.x, a.y, a.z}; }

}  // namespace

bool deviceMotionAvailable() { return manager().deviceMotionAvailable; }

bool accelerometerAvailable() { return manager().accelerometerAvailable; }

void startDeviceMotionUpdates(double interval, std::function<void(Acceleration)> handler) {
  manager().deviceMotionUpdateInterval = interval;
  [manager()
      startDeviceMotionUpdatesToQueue:sampleQueue()
                          withHandler:^(CMDeviceMotion* motion, NSError*) {
                            if (!motion) return;
                            ios::shielded("motion", [&] { handler(of(motion.userAcceleration)); });
                          }];
}

void startAccelerometerUpdates(double interval, std::function<void(Acceleration)> handler) {
  manager().accelerometerUpdateInterval = interval;
  [manager()
      startAccelerometerUpdatesToQueue:sampleQueue()
                           withHandler:^(CMAccelerometerData* data, NSError*) {
                             if (!data) return;
                             ios::shielded("motion", [&] { handler(of(data.acceleration)); });
                           }];
}

}  // namespace sys
