// The app container on iOS: NSFileManager for the Documents folder, folders,
// a folder's entries, an item's type and moves; stat(2) for a file's stamp; open(2) and fstat(2) to
// read only a regular file without blocking; NSPropertyListSerialization for the XML and binary
// codecs, and an atomic NSData write (a temporary file, then a rename) with
// the protection class asked for. A file closed by data protection (the phone
// not unlocked since it started) is told apart from one that cannot be read.
#include "sys/files.hpp"

#import <Foundation/Foundation.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bridge.h"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace sys {
namespace {

bool isCocoaError(NSError* error, NSInteger code) {
  return error && [error.domain isEqual:NSCocoaErrorDomain] && error.code == code;
}

void describe(std::string* out, NSError* error) {
  if (out) *out = error ? ios::utf8(error.localizedDescription) : "unknown error";
}

// The bytes of the regular file at `path`, or nil. The descriptor is checked
// again, since another item may have been put there after the type was read.
NSData* readRegular(const std::string& path, bool* opened) {
  int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  *opened = fd >= 0;
  if (fd < 0) return nil;
  struct stat st {};
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    return nil;
  }
  NSFileHandle* handle = [[NSFileHandle alloc] initWithFileDescriptor:fd closeOnDealloc:YES];
  return [handle readDataToEndOfFileAndReturnError:nil];
}

// Whether a regular file that would not open is closed by data protection:
// the class keys are gone until the first unlock, and the system says so.
bool protectedDataUnavailable() {
  rt::Id app = rt::send<rt::Id>(rt::getClass("UIApplication"), "sharedApplication");
  return app && !rt::send<bool>(app, "isProtectedDataAvailable");
}

NSDataWritingOptions protectionOption(FileProtection protection) {
  switch (protection) {
    case FileProtection::UntilFirstUnlock:
      return NSDataWritingFileProtectionCompleteUntilFirstUserAuthentication;
    case FileProtection::None:
      return NSDataWritingFileProtectionNone;
    case FileProtection::HostDefault:
      break;
  }
  return 0;
}

}  // namespace

std::string documentsDirectory() {
  NSArray* urls = [[NSFileManager defaultManager] URLsForDirectory:NSDocumentDirectory
                                                         inDomains:NSUserDomainMask];
  if (urls.count == 0) return "";
  NSURL* url = [urls objectAtIndex:0];
  return ios::utf8(url.path);
}

std::string dataContainersDirectory() { return "/var/mobile/Containers/Data/Application"; }

std::vector<std::string> directoryEntries(const std::string& path) {
  std::vector<std::string> names;
  @autoreleasepool {
    NSArray* entries = [[NSFileManager defaultManager] contentsOfDirectoryAtPath:ios::ns(path)
                                                                           error:nil];
    for (NSUInteger i = 0; i < entries.count; ++i)
      names.push_back(ios::utf8([entries objectAtIndex:i]));
  }
  return names;
}

std::optional<FileStamp> fileStamp(const std::string& path) {
  struct stat st {};
  if (stat(path.c_str(), &st) != 0) return std::nullopt;
  // Whole seconds only: the nanoseconds' field is named differently by each
  // C library, and the file number already tells an atomic rewrite apart.
  return FileStamp{static_cast<long long>(st.st_mtime), 0,
                   static_cast<unsigned long long>(st.st_ino), static_cast<long long>(st.st_size)};
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

PlistFile readPropertyListFile(const std::string& path) {
  @autoreleasepool {
    NSError* error = nil;
    NSDictionary* attributes = [[NSFileManager defaultManager] attributesOfItemAtPath:ios::ns(path)
                                                                                error:&error];
    if (!attributes) {
      bool missing = isCocoaError(error, NSFileReadNoSuchFileError) ||
                     isCocoaError(error, NSFileNoSuchFileError);
      return {missing ? ReadStatus::Missing : ReadStatus::Unreadable, {}};
    }
    if (![[attributes objectForKey:NSFileType] isEqual:NSFileTypeRegular])
      return {ReadStatus::Unreadable, {}};
    bool opened = false;
    NSData* data = readRegular(path, &opened);
    if (!opened && protectedDataUnavailable()) return {ReadStatus::NotYetReadable, {}};
    if (!data) return {ReadStatus::Unreadable, {}};
    id plist = [NSPropertyListSerialization propertyListWithData:data
                                                         options:NSPropertyListImmutable
                                                          format:nullptr
                                                           error:nil];
    std::optional<base::Value> root = plist ? rt::toValue(ios::handle(plist)) : std::nullopt;
    if (!root) return {ReadStatus::Damaged, {}};
    return {ReadStatus::Read, std::move(*root)};
  }
}

MoveResult moveItem(const std::string& from, const std::string& to, std::string* error) {
  @autoreleasepool {
    NSError* failure = nil;
    if ([[NSFileManager defaultManager] moveItemAtPath:ios::ns(from)
                                                toPath:ios::ns(to)
                                                 error:&failure])
      return MoveResult::Moved;
    describe(error, failure);
    if (isCocoaError(failure, NSFileWriteFileExistsError)) return MoveResult::TargetExists;
    return isCocoaError(failure, NSFileNoSuchFileError) ? MoveResult::SourceMissing
                                                        : MoveResult::Failed;
  }
}

bool writePropertyList(const std::string& path, const base::Value& value, PlistFormat format,
                       std::string* error, FileProtection protection) {
  @autoreleasepool {
    NSPropertyListFormat f = format == PlistFormat::Binary ? NSPropertyListBinaryFormat_v1_0
                                                           : NSPropertyListXMLFormat_v1_0;
    NSError* failure = nil;
    NSData* data =
        [NSPropertyListSerialization dataWithPropertyList:ios::object(rt::fromValue(value))
                                                   format:f
                                                  options:0
                                                    error:&failure];
    NSDataWritingOptions options = NSDataWritingAtomic | protectionOption(protection);
    if (data && [data writeToFile:ios::ns(path) options:options error:&failure]) return true;
    describe(error, failure);
    return false;
  }
}

}  // namespace sys
