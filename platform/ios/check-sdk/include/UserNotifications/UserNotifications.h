// Check-build stand-in: the UserNotifications interfaces the backend uses.
#pragma once

#import <Foundation/Foundation.h>

@class UNNotification;

@interface UNUserNotificationCenter : NSObject
- (void)getDeliveredNotificationsWithCompletionHandler:
    (void (^)(NSArray *notifications))completionHandler;
@end
