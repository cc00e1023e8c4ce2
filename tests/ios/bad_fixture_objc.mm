// What the link must refuse in Objective-C: a class whose name is not in the
// declaration set (misspelt).
#import <Foundation/Foundation.h>

@interface UIAlertControler : NSObject
@end

__attribute__((constructor)) static void badObjcEntry() { NSLog(@"%@", [UIAlertControler new]); }
