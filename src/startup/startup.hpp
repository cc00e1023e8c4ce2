// Start-up: the library's single static initialiser and the fixed order in
// which it brings the system to its resting state (secrets hidden) and
// installs every hook.
#pragma once

namespace core {

// Step A, run by the platform when it loads the library, before the host has
// finished launching: hidden state and the session-list hooks at once, the
// rest queued to the main queue.
void libraryEntry();

// The frame libraryEntry runs its steps in: `early` at once, guarded by
// "[QB] early FATAL: %@", then `rest` on the main queue, guarded by
// "[QB] init FATAL: %@", whether or not `early` failed.
void runStartupSteps(void (*early)(), void (*rest)());

// The delays of the re-applies after step C, while the host finishes launching.
inline constexpr double kReapplyDelays_s[] = {0.5, 1.4};

}  // namespace core
