// What `@available` calls at run time. Xcode's clang links it from its own
// compiler runtime, which clang and ld64.lld on Linux do not have for iOS, so
// the library answers the check itself from the version Foundation reports.
// Where the runtime is linked as well (Xcode), this definition is found first
// and the runtime's is never pulled in.
#import <Foundation/Foundation.h>

#include <cstdint>

namespace {
// The platform number LC_BUILD_VERSION gives iOS, which clang passes for an
// `@available(iOS ...)` check.
constexpr uint32_t kPlatformIOS = 2;
}  // namespace

extern "C" __attribute__((visibility("hidden"))) int32_t __isPlatformVersionAtLeast(
    uint32_t platform, uint32_t major, uint32_t minor, uint32_t subminor) {
  // The library runs in iOS processes only: a check for another platform is false.
  if (platform != kPlatformIOS) return 0;
  NSOperatingSystemVersion wanted = {static_cast<NSInteger>(major), static_cast<NSInteger>(minor),
                                     static_cast<NSInteger>(subminor)};
  return [NSProcessInfo.processInfo isOperatingSystemAtLeastVersion:wanted] ? 1 : 0;
}
