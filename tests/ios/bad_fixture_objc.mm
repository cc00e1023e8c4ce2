// What the dylib check must reject in Objective-C: a class whose name is not
// in the declaration set (misspelt), and an iOS 15 class bound strongly (its
// declaration here lacks the availability the declaration set gives it).
#import <Foundation/Foundation.h>

@interface UIAlertControler : NSObject
@end

@interface UISheetPresentationControllerDetent : NSObject
+ (id)largeDetent;
@end

__attribute__((constructor)) static void badObjcEntry() {
  NSLog(@"%@ %@", [UIAlertControler new], [UISheetPresentationControllerDetent largeDetent]);
}
