// The host app's Info.plist on iOS, through the main bundle; a value that is
// not a string reads as absent.
#include "sys/bundle.hpp"

#import <Foundation/Foundation.h>

#include "bridge.h"

namespace sys {

std::string mainBundleString(std::string_view key) {
  id value = [[NSBundle mainBundle] objectForInfoDictionaryKey:ios::ns(key)];
  return [value isKindOfClass:[NSString class]] ? ios::utf8(value) : std::string();
}

}  // namespace sys
