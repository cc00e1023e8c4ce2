// Which process the library was loaded into. The package's filter loads it
// into the host app and into SpringBoard; anything else gets nothing.
#pragma once

namespace core {

enum class ProcessRole {
  Host,         // everything
  SpringBoard,  // the lock-screen guard only
  Other,        // nothing
};

// SpringBoard by its main bundle; the host by any of the host classes the
// hooks use (a build lacking some of them is still the host); a process whose
// bundle cannot be read counts as the host, as before there was a choice.
ProcessRole processRole();

}  // namespace core
