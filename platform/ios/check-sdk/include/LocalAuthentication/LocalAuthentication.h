// Check-build stand-in: LAContext as the biometric check uses it.
#pragma once

#import <Foundation/Foundation.h>

typedef enum LAPolicy : NSInteger {
  LAPolicyDeviceOwnerAuthenticationWithBiometrics = 1,
  LAPolicyDeviceOwnerAuthentication = 2,
} LAPolicy;

@interface LAContext : NSObject
@property (nonatomic, copy) NSString *localizedFallbackTitle;
- (BOOL)canEvaluatePolicy:(LAPolicy)policy error:(NSError **)error;
- (void)evaluatePolicy:(LAPolicy)policy localizedReason:(NSString *)localizedReason reply:(void (^)(BOOL success, NSError *error))reply;
@end
