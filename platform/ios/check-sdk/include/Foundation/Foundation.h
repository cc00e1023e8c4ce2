// Check-build stand-in: the Foundation classes, functions and constants the
// backend uses, declared from Foundation's public reference (no generics, no
// nullability: the check is about names, types, ARC and blocks).
#pragma once

#include <stddef.h>
#include <stdint.h>

#import <CoreFoundation/CoreFoundation.h>
#import <CoreGraphics/CoreGraphics.h>
#import <dispatch/dispatch.h>
#import <objc/objc.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;
typedef enum NSComparisonResult : NSInteger {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
} NSComparisonResult;
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@class NSString, NSArray, NSDictionary, NSError, NSData, NSDate, NSURL;

@protocol NSObject
- (BOOL)isEqual:(id)object;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)aSelector;
@property (readonly, copy) NSString *description;
@end

@protocol NSCopying
@end

@interface NSObject <NSObject> {
  Class isa;
}
+ (instancetype)alloc;
+ (instancetype)new;
- (instancetype)init;
+ (Class)class;
@end

@interface NSObject (NSKeyValueCoding)
- (id)valueForKey:(NSString *)key;
- (void)setValue:(id)value forKey:(NSString *)key;
@end

@interface NSString : NSObject <NSCopying>
+ (instancetype)stringWithUTF8String:(const char *)nullTerminatedCString;
- (instancetype)initWithBytes:(const void *)bytes length:(NSUInteger)len encoding:(NSStringEncoding)encoding;
@property (readonly) const char *UTF8String;
@property (readonly) NSUInteger length;
@property (readonly, copy) NSString *lowercaseString;
- (NSComparisonResult)localizedStandardCompare:(NSString *)string;
@property (readonly) NSInteger integerValue;
@property (readonly) BOOL boolValue;
@property (readonly) double doubleValue;
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber *)numberWithInteger:(NSInteger)value;
+ (NSNumber *)numberWithBool:(BOOL)value;
+ (NSNumber *)numberWithDouble:(double)value;
@property (readonly) NSInteger integerValue;
@property (readonly) long long longLongValue;
@property (readonly) BOOL boolValue;
@property (readonly) double doubleValue;
@property (readonly) const char *objCType;
@end

@interface NSNull : NSObject <NSCopying>
+ (NSNull *)null;
@end

@interface NSArray : NSObject <NSCopying>
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)cnt;
+ (instancetype)arrayWithArray:(NSArray *)array;
@property (readonly) NSUInteger count;
- (id)objectAtIndex:(NSUInteger)index;
- (BOOL)containsObject:(id)anObject;
@end

@interface NSMutableArray : NSArray
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems;
- (void)addObject:(id)anObject;
@end

@interface NSDictionary : NSObject <NSCopying>
+ (instancetype)dictionaryWithObjects:(const id[])objects forKeys:(const id<NSCopying>[])keys count:(NSUInteger)cnt;
+ (instancetype)dictionaryWithDictionary:(NSDictionary *)dict;
@property (readonly) NSUInteger count;
@property (readonly, copy) NSArray *allKeys;
- (id)objectForKey:(id)aKey;
@end

@interface NSMutableDictionary : NSDictionary
+ (instancetype)dictionaryWithCapacity:(NSUInteger)numItems;
- (void)setObject:(id)anObject forKey:(id<NSCopying>)aKey;
@end

@interface NSSet : NSObject <NSCopying>
+ (instancetype)setWithArray:(NSArray *)array;
@property (readonly) NSUInteger count;
@property (readonly, copy) NSArray *allObjects;
- (BOOL)containsObject:(id)anObject;
@end

@interface NSIndexPath : NSObject <NSCopying>
@end

@interface NSIndexSet : NSObject <NSCopying>
+ (instancetype)indexSetWithIndex:(NSUInteger)value;
@end

@interface NSLocale : NSObject <NSCopying>
+ (instancetype)localeWithLocaleIdentifier:(NSString *)ident;
@end

@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle *mainBundle;
- (id)objectForInfoDictionaryKey:(NSString *)key;
@end

typedef struct {
  NSInteger majorVersion;
  NSInteger minorVersion;
  NSInteger patchVersion;
} NSOperatingSystemVersion;

@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo *processInfo;
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
@end

@interface NSDate : NSObject <NSCopying>
+ (instancetype)date;
+ (instancetype)dateWithTimeIntervalSinceReferenceDate:(NSTimeInterval)ti;
@property (readonly) NSTimeInterval timeIntervalSinceReferenceDate;
@end

typedef NSUInteger NSDataWritingOptions;
enum : NSDataWritingOptions {
  NSDataWritingAtomic = 1,
  NSDataWritingFileProtectionNone = 0x10000000,
  NSDataWritingFileProtectionCompleteUntilFirstUserAuthentication = 0x30000000,
};

@interface NSData : NSObject <NSCopying>
+ (instancetype)dataWithBytes:(const void *)bytes length:(NSUInteger)length;
+ (instancetype)dataWithContentsOfFile:(NSString *)path;
@property (readonly) const void *bytes;
@property (readonly) NSUInteger length;
- (BOOL)writeToFile:(NSString *)path options:(NSDataWritingOptions)writeOptionsMask error:(NSError **)errorPtr;
@end

typedef NSString *NSExceptionName;
extern "C" NSExceptionName const NSInvalidArgumentException;

@interface NSException : NSObject
+ (NSException *)exceptionWithName:(NSExceptionName)name reason:(NSString *)reason userInfo:(NSDictionary *)userInfo;
@property (readonly, copy) NSExceptionName name;
@property (readonly, copy) NSString *reason;
@end

typedef NSString *NSErrorDomain;
extern "C" NSErrorDomain const NSCocoaErrorDomain;
enum : NSInteger {
  NSFileNoSuchFileError = 4,
  NSFileReadNoSuchFileError = 260,
  NSFileWriteFileExistsError = 516,
};

@interface NSError : NSObject
@property (readonly, copy) NSErrorDomain domain;
@property (readonly) NSInteger code;
@property (readonly, copy) NSString *localizedDescription;
@end

typedef NSString *NSURLResourceKey;
extern "C" NSURLResourceKey const NSURLIsExcludedFromBackupKey;

@interface NSURL : NSObject <NSCopying>
+ (NSURL *)fileURLWithPath:(NSString *)path;
@property (readonly, copy) NSString *path;
- (BOOL)setResourceValue:(id)value forKey:(NSURLResourceKey)key error:(NSError **)error;
@end

typedef NSString *NSNotificationName;

@interface NSNotification : NSObject
@property (readonly, copy) NSNotificationName name;
@property (readonly, strong) id object;
@property (readonly, copy) NSDictionary *userInfo;
@end

@interface NSOperationQueue : NSObject
@property (class, readonly, strong) NSOperationQueue *mainQueue;
@property NSInteger maxConcurrentOperationCount;
@end

@interface NSNotificationCenter : NSObject
@property (class, readonly, strong) NSNotificationCenter *defaultCenter;
- (id<NSObject>)addObserverForName:(NSNotificationName)name object:(id)obj queue:(NSOperationQueue *)queue usingBlock:(void (^)(NSNotification *notification))block;
- (void)removeObserver:(id)observer;
- (void)postNotificationName:(NSNotificationName)aName object:(id)anObject userInfo:(NSDictionary *)aUserInfo;
@end

@interface NSThread : NSObject
@property (class, readonly) BOOL isMainThread;
@end

@interface NSTimer : NSObject
+ (NSTimer *)timerWithTimeInterval:(NSTimeInterval)interval repeats:(BOOL)repeats block:(void (^)(NSTimer *timer))block;
- (void)invalidate;
@end

typedef NSString *NSRunLoopMode;
extern "C" NSRunLoopMode const NSRunLoopCommonModes;

@interface NSRunLoop : NSObject
@property (class, readonly, strong) NSRunLoop *mainRunLoop;
- (void)addTimer:(NSTimer *)timer forMode:(NSRunLoopMode)mode;
@end

typedef enum NSSearchPathDirectory : NSUInteger { NSDocumentDirectory = 9 } NSSearchPathDirectory;
typedef enum NSSearchPathDomainMask : NSUInteger { NSUserDomainMask = 1 } NSSearchPathDomainMask;
typedef NSString *NSFileAttributeKey;
typedef NSString *NSFileAttributeType;
extern "C" NSFileAttributeKey const NSFileType;
extern "C" NSFileAttributeType const NSFileTypeRegular;

@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager *defaultManager;
- (NSArray *)URLsForDirectory:(NSSearchPathDirectory)directory inDomains:(NSSearchPathDomainMask)domainMask;
- (BOOL)createDirectoryAtPath:(NSString *)path withIntermediateDirectories:(BOOL)createIntermediates attributes:(NSDictionary *)attributes error:(NSError **)error;
- (BOOL)fileExistsAtPath:(NSString *)path;
- (BOOL)fileExistsAtPath:(NSString *)path isDirectory:(BOOL *)isDirectory;
- (NSDictionary *)attributesOfItemAtPath:(NSString *)path error:(NSError **)error;
- (NSArray *)contentsOfDirectoryAtPath:(NSString *)path error:(NSError **)error;
- (BOOL)moveItemAtPath:(NSString *)srcPath toPath:(NSString *)dstPath error:(NSError **)error;
@end

@interface NSFileHandle : NSObject
- (instancetype)initWithFileDescriptor:(int)fd closeOnDealloc:(BOOL)closeopt;
- (NSData *)readDataToEndOfFileAndReturnError:(NSError **)error;
@end

typedef enum NSPropertyListFormat : NSUInteger {
  NSPropertyListOpenStepFormat = 1,
  NSPropertyListXMLFormat_v1_0 = 100,
  NSPropertyListBinaryFormat_v1_0 = 200,
} NSPropertyListFormat;
typedef enum NSPropertyListMutabilityOptions : NSUInteger {
  NSPropertyListImmutable = 0,
} NSPropertyListMutabilityOptions;
typedef NSPropertyListMutabilityOptions NSPropertyListReadOptions;
typedef NSUInteger NSPropertyListWriteOptions;

@interface NSPropertyListSerialization : NSObject
+ (id)propertyListWithData:(NSData *)data options:(NSPropertyListReadOptions)opt format:(NSPropertyListFormat *)format error:(NSError **)error;
+ (NSData *)dataWithPropertyList:(id)plist format:(NSPropertyListFormat)format options:(NSPropertyListWriteOptions)opt error:(NSError **)error;
@end

typedef NSUInteger NSCalendarUnit;
enum : NSCalendarUnit {
  NSCalendarUnitHour = 1UL << 5,
  NSCalendarUnitMinute = 1UL << 6,
  NSCalendarUnitSecond = 1UL << 7,
};

@interface NSDateComponents : NSObject
@property NSInteger hour;
@property NSInteger minute;
@property NSInteger second;
@end

typedef NSUInteger NSCalendarOptions;

@interface NSCalendar : NSObject
@property (class, readonly, copy) NSCalendar *currentCalendar;
- (NSDateComponents *)components:(NSCalendarUnit)unitFlags fromDate:(NSDate *)date;
- (NSDate *)dateBySettingHour:(NSInteger)h minute:(NSInteger)m second:(NSInteger)s ofDate:(NSDate *)date options:(NSCalendarOptions)opts;
@end

extern "C" {
void NSLog(NSString *format, ...);
Class NSClassFromString(NSString *aClassName);
const char *NSGetSizeAndAlignment(const char *typePtr, NSUInteger *sizep, NSUInteger *alignp);
}
