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
- (void)setFill;
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

@interface UIImage : NSObject
@end

@interface UIBezierPath : NSObject <NSCopying>
+ (instancetype)bezierPathWithRoundedRect:(CGRect)rect cornerRadius:(CGFloat)cornerRadius;
- (void)fill;
@end

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

@interface UIResponder : NSObject
@end

@interface UIView : UIResponder
+ (void)animateWithDuration:(NSTimeInterval)duration animations:(void (^)(void))animations completion:(void (^)(BOOL finished))completion;
@property (nonatomic, readonly, strong) CALayer *layer;
@property (nonatomic, copy) UIColor *backgroundColor;
@property (nonatomic) BOOL clipsToBounds;
- (void)addGestureRecognizer:(UIGestureRecognizer *)gestureRecognizer;
@end

@interface UILabel : UIView
@property (nonatomic, copy) NSString *text;
@property (nonatomic, strong) UIFont *font;
@property (nonatomic, strong) UIColor *textColor;
@property (nonatomic) NSTextAlignment textAlignment;
@property (nonatomic) NSInteger numberOfLines;
@end

@interface UIControl : UIView
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

@interface UILongPressGestureRecognizer : UIGestureRecognizer
@property (nonatomic) NSTimeInterval minimumPressDuration;
@end

@interface UIViewController : UIResponder
- (void)presentViewController:(UIViewController *)viewControllerToPresent animated:(BOOL)flag completion:(void (^)(void))completion;
@property (nonatomic, readonly) UIViewController *presentedViewController;
@property (nonatomic, readonly) UIViewController *presentingViewController;
@property (nonatomic, readonly, getter=isBeingDismissed) BOOL beingDismissed;
- (void)viewDidDisappear:(BOOL)animated;
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
