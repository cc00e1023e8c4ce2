// Check-build stand-in: the media clock and the layer's corner radius.
#pragma once

#import <CoreFoundation/CoreFoundation.h>
#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

extern "C" CFTimeInterval CACurrentMediaTime(void);

@interface CALayer : NSObject
@property CGFloat cornerRadius;
@end
