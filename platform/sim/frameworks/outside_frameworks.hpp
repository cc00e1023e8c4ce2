// The simulated frameworks through which an app leaves records outside
// itself: Intents (interactions donated to the system's suggestions) and
// CoreSpotlight (the search index). What they keep goes to the device's
// records. As on iOS, every write is applied asynchronously, after the
// caller's turn of the main queue, and completion handlers are called later
// on the framework's own queue.
#pragma once

#include <functional>

#include "rt/types.hpp"

namespace sim {

class Runtime;
class SystemRecords;

// A write of the frameworks: the request reaches the system's daemon at once,
// which applies it to the device's records whatever becomes of the app; then
// success is reported to `completion` (a block, may be nil) on the
// framework's queue, after the caller's turn, and not while the app is
// suspended.
void writeLater(std::function<void(SystemRecords&)> write, rt::Id completion);

void registerIntents(Runtime& rtm);
void registerSpotlight(Runtime& rtm);

}  // namespace sim
