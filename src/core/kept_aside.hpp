// A settings file that exists but cannot be used is moved aside, into the
// same folder under a name with the date and time, before any save could
// replace it: whatever the user had stays on disk to be recovered.
#pragma once

#include <string>

namespace core {

// "…/config-2025-11-25-031700.plist" for "…/config.plist" at that absolute
// time (UTC, so the names sort in the order they were made whatever the time
// zone); the attempt-th name in one second (attempt ≥ 2) ends "-attempt".
std::string keptAsideName(const std::string& path, double absoluteTime, int attempt);

// Moves the item at `path` to the first name that is still free, never over
// an earlier one, and logs the new path. True when nothing is left at `path`
// (moved, or already gone); false, with `error`, while it is still there.
bool keepAside(const std::string& path, std::string* error);

}  // namespace core
