// The main queue and timers on the current simulated process, in the
// device's virtual time.
#include "sys/queue.hpp"

#include <thread>

#include "sim/process.hpp"

namespace sys {

using sim::currentProcess;

bool isMainThread() { return std::this_thread::get_id() == currentProcess().mainThread(); }

void async(Block block) {
  sim::Process& p = currentProcess();
  p.mainQueue().submit(p.device().elapsed(), std::move(block));
}

void after(double seconds, Block block) {
  sim::Process& p = currentProcess();
  p.mainQueue().submit(p.device().elapsed() + (seconds > 0 ? seconds : 0), std::move(block));
}

Timer scheduleRepeatingTimer(double interval, Block tick) {
  sim::Process& p = currentProcess();
  return Timer{p.mainQueue().addTimer(p.device().elapsed() + interval, interval, std::move(tick))};
}

void invalidateTimer(Timer timer) { currentProcess().mainQueue().cancelTimer(timer.id); }

}  // namespace sys
