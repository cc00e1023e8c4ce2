// Check-build stand-in: the UIKit classes, functions and constants the
// backend uses, declared from UIKit's public reference.
#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

typedef NSString *NSAttributedStringKey;
extern "C" NSAttributedStringKey const NSFontAttributeName;
extern "C" NSAttributedStringKey const NSForegroundColorAttributeName;

typedef enum NSTextAlignment : NSInteger {
  NSTextAlignmentLeft = 0,
  NSTextAlignmentCenter = 1,
  NSTextAlignmentRight = 2,
  NSTextAlignmentJustified = 3,
  NSTextAlignmentNatural = 4,
} NSTextAlignment;

@interface UIColor : NSObject
+ (UIColor *)colorWithRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
- (UIColor *)colorWithAlphaComponent:(CGFloat)alpha;
- (void)setFill;
@property (class, nonatomic, readonly) UIColor *systemGreenColor;
@property (class, nonatomic, readonly) UIColor *systemBlueColor;
@property (class, nonatomic, readonly) UIColor *systemOrangeColor;
@property (class, nonatomic, readonly) UIColor *systemGrayColor;
@property (class, nonatomic, readonly) UIColor *systemIndigoColor;
@property (class, nonatomic, readonly) UIColor *systemTealColor;
@property (class, nonatomic, readonly) UIColor *labelColor;
@property (class, nonatomic, readonly) UIColor *secondaryLabelColor;
@property (class, nonatomic, readonly) UIColor *tertiaryLabelColor;
@property (class, nonatomic, readonly) UIColor *systemGroupedBackgroundColor;
@end

typedef CGFloat UIFontWeight;
extern "C" const UIFontWeight UIFontWeightRegular;
extern "C" const UIFontWeight UIFontWeightMedium;
extern "C" const UIFontWeight UIFontWeightSemibold;
extern "C" const UIFontWeight UIFontWeightBold;

@interface UIFont : NSObject <NSCopying>
+ (UIFont *)systemFontOfSize:(CGFloat)fontSize weight:(UIFontWeight)weight;
@end

@interface NSString (UIKitDrawing)
- (CGSize)sizeWithAttributes:(NSDictionary *)attrs;
- (void)drawAtPoint:(CGPoint)point withAttributes:(NSDictionary *)attrs;
@end

@interface NSIndexPath (UIKitAdditions)
+ (instancetype)indexPathForRow:(NSInteger)row inSection:(NSInteger)section;
@property (readonly) NSInteger row;
@property (readonly) NSInteger section;
@end

typedef enum UIImageSymbolWeight : NSInteger {
  UIImageSymbolWeightUnspecified = 0,
  UIImageSymbolWeightUltraLight = 1,
  UIImageSymbolWeightThin = 2,
  UIImageSymbolWeightLight = 3,
  UIImageSymbolWeightRegular = 4,
  UIImageSymbolWeightMedium = 5,
  UIImageSymbolWeightSemibold = 6,
  UIImageSymbolWeightBold = 7,
  UIImageSymbolWeightHeavy = 8,
  UIImageSymbolWeightBlack = 9,
} UIImageSymbolWeight;

typedef enum UIImageRenderingMode : NSInteger {
  UIImageRenderingModeAutomatic = 0,
  UIImageRenderingModeAlwaysOriginal = 1,
  UIImageRenderingModeAlwaysTemplate = 2,
} UIImageRenderingMode;

@interface UIImageConfiguration : NSObject <NSCopying>
@end

@interface UIImageSymbolConfiguration : UIImageConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(UIImageSymbolWeight)weight;
@end

@interface UIImage : NSObject
+ (UIImage *)systemImageNamed:(NSString *)name withConfiguration:(UIImageConfiguration *)configuration;
- (UIImage *)imageWithTintColor:(UIColor *)color renderingMode:(UIImageRenderingMode)renderingMode;
@property (nonatomic, readonly) CGSize size;
- (void)drawInRect:(CGRect)rect;
@end

@interface UIBezierPath : NSObject <NSCopying>
+ (instancetype)bezierPathWithRoundedRect:(CGRect)rect cornerRadius:(CGFloat)cornerRadius;
- (void)fill;
- (void)addClip;
@end

extern "C" CGContextRef UIGraphicsGetCurrentContext(void);

@interface UIGraphicsImageRendererFormat : NSObject
+ (instancetype)preferredFormat;
@property (nonatomic) CGFloat scale;
@property (nonatomic) BOOL opaque;
@end

@interface UIGraphicsImageRendererContext : NSObject
@end

typedef void (^UIGraphicsImageDrawingActions)(UIGraphicsImageRendererContext *rendererContext);

@interface UIGraphicsImageRenderer : NSObject
- (instancetype)initWithSize:(CGSize)size format:(UIGraphicsImageRendererFormat *)format;
- (UIImage *)imageWithActions:(UIGraphicsImageDrawingActions)actions;
@end

@class UIGestureRecognizer;

typedef struct UIEdgeInsets {
  CGFloat top, left, bottom, right;
} UIEdgeInsets;
static inline UIEdgeInsets UIEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right) {
  UIEdgeInsets insets = {top, left, bottom, right};
  return insets;
}

@class NSLayoutAnchor, NSLayoutConstraint;

@interface NSLayoutConstraint : NSObject
+ (void)activateConstraints:(NSArray *)constraints;
@end

@interface NSLayoutAnchor : NSObject
- (NSLayoutConstraint *)constraintEqualToAnchor:(NSLayoutAnchor *)anchor;
- (NSLayoutConstraint *)constraintEqualToAnchor:(NSLayoutAnchor *)anchor constant:(CGFloat)c;
@end

@interface NSLayoutXAxisAnchor : NSLayoutAnchor
@end

@interface NSLayoutYAxisAnchor : NSLayoutAnchor
@end

@interface NSLayoutDimension : NSLayoutAnchor
- (NSLayoutConstraint *)constraintEqualToConstant:(CGFloat)c;
- (NSLayoutConstraint *)constraintGreaterThanOrEqualToConstant:(CGFloat)c;
@end

@interface UIResponder : NSObject
@end

@interface UIView : UIResponder
+ (void)animateWithDuration:(NSTimeInterval)duration animations:(void (^)(void))animations completion:(void (^)(BOOL finished))completion;
@property (nonatomic, readonly, strong) CALayer *layer;
@property (nonatomic, copy) UIColor *backgroundColor;
@property (nonatomic) BOOL clipsToBounds;
@property (nonatomic) CGRect frame;
@property (nonatomic, strong) UIColor *tintColor;
@property (nonatomic) BOOL translatesAutoresizingMaskIntoConstraints;
@property (nonatomic, readonly, strong) NSLayoutXAxisAnchor *centerXAnchor;
@property (nonatomic, readonly, strong) NSLayoutYAxisAnchor *topAnchor;
@property (nonatomic, readonly, strong) NSLayoutDimension *heightAnchor;
- (void)addGestureRecognizer:(UIGestureRecognizer *)gestureRecognizer;
- (void)addSubview:(UIView *)view;
- (void)layoutIfNeeded;
- (CGSize)sizeThatFits:(CGSize)size;
@end

@interface UIImageView : UIView
@property (nonatomic, strong) UIImage *image;
@end

@interface UIScreen : NSObject
@property (class, nonatomic, readonly) UIScreen *mainScreen;
@property (nonatomic, readonly) CGRect bounds;
@property (nonatomic, readonly) CGFloat scale;
@end

@interface UILabel : UIView
@property (nonatomic, copy) NSString *text;
@property (nonatomic, strong) UIFont *font;
@property (nonatomic, strong) UIColor *textColor;
@property (nonatomic) NSTextAlignment textAlignment;
@property (nonatomic) NSInteger numberOfLines;
@end

typedef NSUInteger UIControlEvents;
enum : UIControlEvents { UIControlEventValueChanged = 1 << 12 };

@interface UIControl : UIView
- (void)addTarget:(id)target action:(SEL)action forControlEvents:(UIControlEvents)controlEvents;
@end

@interface UISwitch : UIControl
@property (nonatomic, getter=isOn) BOOL on;
@property (nonatomic, strong) UIColor *onTintColor;
@end

typedef enum UIDatePickerMode : NSInteger {
  UIDatePickerModeTime = 0,
  UIDatePickerModeDate = 1,
  UIDatePickerModeDateAndTime = 2,
  UIDatePickerModeCountDownTimer = 3,
} UIDatePickerMode;

typedef enum UIDatePickerStyle : NSInteger {
  UIDatePickerStyleAutomatic = 0,
  UIDatePickerStyleWheels = 1,
  UIDatePickerStyleCompact = 2,
  UIDatePickerStyleInline = 3,
} UIDatePickerStyle;

@interface UIDatePicker : UIControl
@property (nonatomic) UIDatePickerMode datePickerMode;
@property (nonatomic) UIDatePickerStyle preferredDatePickerStyle;
@property (nonatomic, strong) NSLocale *locale;
@property (nonatomic, strong) NSDate *date;
@end

@interface UISearchBar : UIView
@property (nonatomic, copy) NSString *text;
@property (nonatomic, copy) NSString *placeholder;
@end

typedef enum UITextFieldViewMode : NSInteger {
  UITextFieldViewModeNever = 0,
  UITextFieldViewModeWhileEditing = 1,
  UITextFieldViewModeUnlessEditing = 2,
  UITextFieldViewModeAlways = 3,
} UITextFieldViewMode;

@interface UITextField : UIControl
@property (nonatomic, copy) NSString *text;
@property (nonatomic, copy) NSString *placeholder;
@property (nonatomic) UITextFieldViewMode clearButtonMode;
@property (nonatomic, getter=isSecureTextEntry) BOOL secureTextEntry;
@end

typedef enum UIGestureRecognizerState : NSInteger {
  UIGestureRecognizerStatePossible = 0,
  UIGestureRecognizerStateBegan = 1,
  UIGestureRecognizerStateChanged = 2,
  UIGestureRecognizerStateEnded = 3,
  UIGestureRecognizerStateCancelled = 4,
  UIGestureRecognizerStateFailed = 5,
} UIGestureRecognizerState;

@interface UIGestureRecognizer : NSObject
- (instancetype)initWithTarget:(id)target action:(SEL)action;
@property (nonatomic, readonly) UIGestureRecognizerState state;
@property (nonatomic) BOOL cancelsTouchesInView;
@end

@interface UIGestureRecognizer (Location)
- (CGPoint)locationInView:(UIView *)view;
@end

@interface UITapGestureRecognizer : UIGestureRecognizer
@end

@interface UILongPressGestureRecognizer : UIGestureRecognizer
@property (nonatomic) NSTimeInterval minimumPressDuration;
@end

typedef enum UIModalPresentationStyle : NSInteger {
  UIModalPresentationFullScreen = 0,
  UIModalPresentationPageSheet = 1,
  UIModalPresentationFormSheet = 2,
} UIModalPresentationStyle;

typedef enum UIBarButtonItemStyle : NSInteger {
  UIBarButtonItemStylePlain = 0,
  UIBarButtonItemStyleDone = 2,
} UIBarButtonItemStyle;

@interface UIBarItem : NSObject
@end

@interface UIBarButtonItem : UIBarItem
- (instancetype)initWithTitle:(NSString *)title style:(UIBarButtonItemStyle)style target:(id)target action:(SEL)action;
@end

@class UISearchController;

@interface UINavigationItem : NSObject
@property (nonatomic, strong) UIBarButtonItem *leftBarButtonItem;
@property (nonatomic, strong) UISearchController *searchController;
@property (nonatomic) BOOL hidesSearchBarWhenScrolling;
@end

@interface UINavigationBar : UIView
@property (nonatomic) BOOL prefersLargeTitles;
@end

@class UIPresentationController;
@protocol UIAdaptivePresentationControllerDelegate <NSObject>
@optional
- (void)presentationControllerDidDismiss:(UIPresentationController *)presentationController;
@end

@interface UIPresentationController : NSObject
@property (nonatomic, weak) id<UIAdaptivePresentationControllerDelegate> delegate;
@end

__attribute__((availability(ios, introduced = 15.0)))
@interface UISheetPresentationControllerDetent : NSObject
+ (instancetype)largeDetent;
@end

__attribute__((availability(ios, introduced = 15.0)))
@interface UISheetPresentationController : UIPresentationController
@property (nonatomic, copy) NSArray *detents;
@property (nonatomic) BOOL prefersGrabberVisible;
@end

@interface UIViewController : UIResponder
- (void)presentViewController:(UIViewController *)viewControllerToPresent animated:(BOOL)flag completion:(void (^)(void))completion;
- (void)dismissViewControllerAnimated:(BOOL)flag completion:(void (^)(void))completion;
@property (nonatomic, readonly) UIViewController *presentedViewController;
@property (nonatomic, readonly) UIViewController *presentingViewController;
@property (nonatomic, readonly, getter=isBeingDismissed) BOOL beingDismissed;
@property (nonatomic, strong) UIView *view;
@property (nonatomic, readonly, strong) UINavigationItem *navigationItem;
@property (nonatomic) UIModalPresentationStyle modalPresentationStyle;
@property (nonatomic, readonly) UISheetPresentationController *sheetPresentationController
    __attribute__((availability(ios, introduced = 15.0)));
@property (nonatomic, readonly) UIPresentationController *presentationController;
@property (nonatomic) BOOL definesPresentationContext;
- (void)viewDidDisappear:(BOOL)animated;
@end

@interface UINavigationController : UIViewController
@property (nonatomic, readonly) UINavigationBar *navigationBar;
@end

@protocol UISearchResultsUpdating <NSObject>
- (void)updateSearchResultsForSearchController:(UISearchController *)searchController;
@end

@interface UISearchController : UIViewController
- (instancetype)initWithSearchResultsController:(UIViewController *)searchResultsController;
@property (nonatomic, weak) id<UISearchResultsUpdating> searchResultsUpdater;
@property (nonatomic) BOOL obscuresBackgroundDuringPresentation;
@property (nonatomic, readonly, strong) UISearchBar *searchBar;
@end

typedef enum UITableViewCellStyle : NSInteger {
  UITableViewCellStyleDefault = 0,
  UITableViewCellStyleValue1 = 1,
  UITableViewCellStyleValue2 = 2,
  UITableViewCellStyleSubtitle = 3,
} UITableViewCellStyle;

typedef enum UITableViewCellAccessoryType : NSInteger {
  UITableViewCellAccessoryNone = 0,
  UITableViewCellAccessoryDisclosureIndicator = 1,
  UITableViewCellAccessoryDetailDisclosureButton = 2,
  UITableViewCellAccessoryCheckmark = 3,
} UITableViewCellAccessoryType;

typedef enum UITableViewCellSelectionStyle : NSInteger {
  UITableViewCellSelectionStyleNone = 0,
  UITableViewCellSelectionStyleBlue = 1,
  UITableViewCellSelectionStyleGray = 2,
  UITableViewCellSelectionStyleDefault = 3,
} UITableViewCellSelectionStyle;

typedef enum UITableViewRowAnimation : NSInteger {
  UITableViewRowAnimationFade = 0,
  UITableViewRowAnimationNone = 5,
  UITableViewRowAnimationAutomatic = 100,
} UITableViewRowAnimation;

extern "C" const CGFloat UITableViewAutomaticDimension;

@interface UITableViewCell : UIView
- (instancetype)initWithStyle:(UITableViewCellStyle)style reuseIdentifier:(NSString *)reuseIdentifier;
@property (nonatomic, readonly, strong) UILabel *textLabel;
@property (nonatomic, readonly, strong) UILabel *detailTextLabel;
@property (nonatomic, readonly, strong) UIImageView *imageView;
@property (nonatomic) UITableViewCellAccessoryType accessoryType;
@property (nonatomic, strong) UIView *accessoryView;
@property (nonatomic) UITableViewCellSelectionStyle selectionStyle;
@end

@interface UITableView : UIView
- (UITableViewCell *)dequeueReusableCellWithIdentifier:(NSString *)identifier;
- (void)reloadSections:(NSIndexSet *)sections withRowAnimation:(UITableViewRowAnimation)animation;
- (void)deleteRowsAtIndexPaths:(NSArray *)indexPaths withRowAnimation:(UITableViewRowAnimation)animation;
- (NSInteger)numberOfRowsInSection:(NSInteger)section;
@property (nonatomic) UIEdgeInsets separatorInset;
@property (nonatomic) CGFloat rowHeight;
@property (nonatomic) CGFloat estimatedRowHeight;
@property (nonatomic, strong) UIView *tableHeaderView;
@end

typedef enum UIContextualActionStyle : NSInteger {
  UIContextualActionStyleNormal = 0,
  UIContextualActionStyleDestructive = 1,
} UIContextualActionStyle;

@class UIContextualAction;
typedef void (^UIContextualActionHandler)(UIContextualAction *action, UIView *sourceView, void (^completionHandler)(BOOL actionPerformed));

@interface UIContextualAction : NSObject
+ (instancetype)contextualActionWithStyle:(UIContextualActionStyle)style title:(NSString *)title handler:(UIContextualActionHandler)handler;
@end

@interface UISwipeActionsConfiguration : NSObject
+ (instancetype)configurationWithActions:(NSArray *)actions;
@end

typedef enum UIAlertActionStyle : NSInteger {
  UIAlertActionStyleDefault = 0,
  UIAlertActionStyleCancel = 1,
  UIAlertActionStyleDestructive = 2,
} UIAlertActionStyle;

typedef enum UIAlertControllerStyle : NSInteger {
  UIAlertControllerStyleActionSheet = 0,
  UIAlertControllerStyleAlert = 1,
} UIAlertControllerStyle;

@interface UIAlertAction : NSObject <NSCopying>
+ (instancetype)actionWithTitle:(NSString *)title style:(UIAlertActionStyle)style handler:(void (^)(UIAlertAction *action))handler;
@end

@interface UIAlertController : UIViewController
+ (instancetype)alertControllerWithTitle:(NSString *)title message:(NSString *)message preferredStyle:(UIAlertControllerStyle)preferredStyle;
- (void)addAction:(UIAlertAction *)action;
- (void)addTextFieldWithConfigurationHandler:(void (^)(UITextField *textField))configurationHandler;
@property (nonatomic, readonly) NSArray *textFields;
@end

typedef enum UIImpactFeedbackStyle : NSInteger {
  UIImpactFeedbackStyleLight = 0,
  UIImpactFeedbackStyleMedium = 1,
  UIImpactFeedbackStyleHeavy = 2,
  UIImpactFeedbackStyleSoft = 3,
  UIImpactFeedbackStyleRigid = 4,
} UIImpactFeedbackStyle;

@interface UIFeedbackGenerator : NSObject
- (void)prepare;
@end

@interface UIImpactFeedbackGenerator : UIFeedbackGenerator
- (instancetype)initWithStyle:(UIImpactFeedbackStyle)style;
- (void)impactOccurred;
@end
