// What links but the dylib check must still reject: an iOS 15 class bound
// strongly (its declaration here lacks the availability the declaration set
// gives it), and a function left to dynamic lookup (the fixture is linked
// with it on).
#import <Foundation/Foundation.h>

@interface UISheetPresentationControllerDetent : NSObject
+ (id)largeDetent;
@end

extern "C" void QBNotInAnyLibrary(void);

__attribute__((constructor)) static void bindingEntry() {
  NSLog(@"%@", [UISheetPresentationControllerDetent largeDetent]);
  QBNotInAnyLibrary();
}
