// Check-build stand-in: CMMotionManager's device-motion and accelerometer
// updates.
#pragma once

#import <Foundation/Foundation.h>

typedef struct {
  double x;
  double y;
  double z;
} CMAcceleration;

@interface CMLogItem : NSObject
@end

@interface CMAccelerometerData : CMLogItem
@property (readonly, nonatomic) CMAcceleration acceleration;
@end

@interface CMDeviceMotion : CMLogItem
@property (readonly, nonatomic) CMAcceleration userAcceleration;
@end

typedef void (^CMAccelerometerHandler)(CMAccelerometerData *accelerometerData, NSError *error);
typedef void (^CMDeviceMotionHandler)(CMDeviceMotion *motion, NSError *error);

@interface CMMotionManager : NSObject
@property (readonly, nonatomic, getter=isDeviceMotionAvailable) BOOL deviceMotionAvailable;
@property (readonly, nonatomic, getter=isAccelerometerAvailable) BOOL accelerometerAvailable;
@property (assign, nonatomic) NSTimeInterval deviceMotionUpdateInterval;
@property (assign, nonatomic) NSTimeInterval accelerometerUpdateInterval;
- (void)startDeviceMotionUpdatesToQueue:(NSOperationQueue *)queue withHandler:(CMDeviceMotionHandler)handler;
- (void)startAccelerometerUpdatesToQueue:(NSOperationQueue *)queue withHandler:(CMAccelerometerHandler)handler;
@end
