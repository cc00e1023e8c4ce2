// The app container on iOS: NSFileManager for the Documents folder and
// folders, NSPropertyListSerialization for the XML and binary codecs, and an
// atomic NSData write (a temporary file, then a rename).
#include "sys/files.hpp"

#import <Foundation/Foundation.h>

#include "bridge.h"
#include "rt/foundation.hpp"

namespace sys {

std::string documentsDirectory() {
  NSArray* urls = [[NSFileManager defaultManager] URLsForDirectory:NSDocumentDirectory
                                                         inDomains:NSUserDomainMask];
  if (urls.count == 0) return "";
  NSURL* url = [urls objectAtIndex:0];
  return ios::utf8(url.path);
}

bool createDirectories(const std::string& path) {
  NSFileManager* fm = [NSFileManager defaultManager];
  [fm createDirectoryAtPath:ios::ns(path) withIntermediateDirectories:YES attributes:nil error:nil];
  BOOL isDirectory = NO;
  return [fm fileExistsAtPath:ios::ns(path) isDirectory:&isDirectory] && isDirectory;
}

bool fileExists(const std::string& path) {
  return [[NSFileManager defaultManager] fileExistsAtPath:ios::ns(path)];
}

std::optional<base::Value> readPropertyList(const std::string& path) {
  @autoreleasepool {
    NSData* data = [NSData dataWithContentsOfFile:ios::ns(path)];
    if (!data) return std::nullopt;
    id plist = [NSPropertyListSerialization propertyListWithData:data
                                                         options:NSPropertyListImmutable
                                                          format:nullptr
                                                           error:nil];
    if (!plist) return std::nullopt;
    return rt::toValue(ios::handle(plist));
  }
}

bool writePropertyList(const std::string& path, const base::Value& value, PlistFormat format) {
  @autoreleasepool {
    NSPropertyListFormat f = format == PlistFormat::Binary ? NSPropertyListBinaryFormat_v1_0
                                                           : NSPropertyListXMLFormat_v1_0;
    NSData* data =
        [NSPropertyListSerialization dataWithPropertyList:ios::object(rt::fromValue(value))
                                                   format:f
                                                  options:0
                                                    error:nil];
    return data && [data writeToFile:ios::ns(path) options:NSDataWritingAtomic error:nil];
  }
}

}  // namespace sys
