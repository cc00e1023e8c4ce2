// The library's only load-time code: dyld runs this initialiser when the
// host loads the dylib, and it runs start-up step A. Nothing may escape it
// into dyld.
#import <Foundation/Foundation.h>

#include "bridge.h"
#include "startup/startup.hpp"

__attribute__((constructor)) static void quenbyLoaded() {
  @autoreleasepool {
    ios::shielded("library entry", [] { core::libraryEntry(); });
  }
}
