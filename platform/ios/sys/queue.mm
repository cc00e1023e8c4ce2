// The main queue on iOS is libdispatch's; repeating timers are NSTimers on
// the main run loop in the common modes. Each block runs the system's
// function behind the exception boundary.
#include "sys/queue.hpp"

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

#include <mutex>
#include <unordered_map>

#include "bridge.h"

namespace sys {
namespace {

struct Timers {
  std::mutex mutex;
  std::uint64_t next = 0;
  std::unordered_map<std::uint64_t, NSTimer*> live;
};

Timers& timers() {
  static Timers* t = new Timers;
  return *t;
}

}  // namespace

void async(Block block) {
  dispatch_async(dispatch_get_main_queue(), ^{
    ios::shielded("main queue", block);
  });
}

void after(double seconds, Block block) {
  auto delay = int64_t((seconds > 0 ? seconds : 0) * double(NSEC_PER_SEC));
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, delay), dispatch_get_main_queue(), ^{
    ios::shielded("main queue", block);
  });
}

bool isMainThread() { return [NSThread isMainThread]; }

Timer scheduleRepeatingTimer(double interval, Block tick) {
  NSTimer* timer = [NSTimer timerWithTimeInterval:interval
                                          repeats:YES
                                            block:^(NSTimer*) {
                                              ios::shielded("timer", tick);
                                            }];
  [[NSRunLoop mainRunLoop] addTimer:timer forMode:NSRunLoopCommonModes];
  Timers& t = timers();
  std::lock_guard lock(t.mutex);
  std::uint64_t id = ++t.next;
  t.live[id] = timer;
  return Timer{id};
}

void invalidateTimer(Timer timer) {
  NSTimer* found = nil;
  {
    Timers& t = timers();
    std::lock_guard lock(t.mutex);
    auto it = t.live.find(timer.id);
    if (it == t.live.end()) return;
    found = it->second;
    t.live.erase(it);
  }
  [found invalidate];
}

}  // namespace sys
