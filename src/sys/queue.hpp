// The main queue and the main run loop's timers. Everything the system does
// after start-up runs here; delays are main-queue `after` calls.
#pragma once

#include <cstdint>
#include <functional>

namespace sys {

using Block = std::function<void()>;

// dispatch_async(dispatch_get_main_queue(), block): runs after what is already
// queued for now, in submission order.
void async(Block block);
// dispatch_after(dispatch_time(DISPATCH_TIME_NOW, seconds), main queue, block):
// blocks run in order of due time, then of submission. A negative delay is 0.
void after(double seconds, Block block);
// [NSThread isMainThread].
bool isMainThread();

// A repeating NSTimer on the main run loop in NSRunLoopCommonModes (so it
// keeps firing while the user scrolls). The first tick is one interval from
// now. Returns a handle for invalidate.
struct Timer {
  std::uint64_t id = 0;
};
Timer scheduleRepeatingTimer(double interval, Block tick);
// [timer invalidate]; nothing for an unknown or already invalid timer.
void invalidateTimer(Timer timer);

}  // namespace sys
