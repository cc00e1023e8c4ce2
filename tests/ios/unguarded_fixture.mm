// An iOS 15 class used without a runtime check, against the declaration set:
// the compiler must refuse it (the check build turns the warning into an error).
#import <UIKit/UIKit.h>

id detent() { return [UISheetPresentationControllerDetent largeDetent]; }
