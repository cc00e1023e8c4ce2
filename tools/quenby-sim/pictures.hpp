// The pictures the `picture` command draws, for the tests that look at them.
#pragma once

#include <string>

#include "session.hpp"
#include "sim/picture/screen_picture.hpp"

namespace qbsim {

// "lockscreen" or "sharesheet": what the phone shows there now. Throws
// ScriptError for any other name.
sim::picture::Picture drawSystemSurface(Session& s, const std::string& surface);

}  // namespace qbsim
