// One temporary folder for a whole run of quenby-sim: every device's
// throwaway container is made inside it (through TMPDIR), and it goes when
// the run ends, also on SIGINT, SIGTERM or SIGHUP.
#pragma once

#include <string>

namespace qbsim {

// Makes the folder and starts the thread that waits for those signals. Call
// before any other thread starts, so that every thread leaves the signals to
// it. Returns the folder, or "" (and changes nothing) when it cannot be made.
std::string startRunFolder();
// Removes the folder; at the normal end of a run.
void endRunFolder();

}  // namespace qbsim
