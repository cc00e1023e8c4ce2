// The host app's bundle. On iOS: [[NSBundle mainBundle]
// objectForInfoDictionaryKey:] read as a string.
#pragma once

#include <string>
#include <string_view>

namespace sys {

// The main bundle's Info.plist string for `key`; "" when absent or not a string.
std::string mainBundleString(std::string_view key);

}  // namespace sys
