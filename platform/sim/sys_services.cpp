// The sys facade on the current simulated process and its device: the main
// queue, timers, clocks, notifications, the log and the process-state slot.
#include <cmath>
#include <thread>

#include "sim/process.hpp"
#include "sys/clock.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/process.hpp"
#include "sys/queue.hpp"

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

double mediaTime() { return currentProcess().device().mediaTime(); }
double absoluteTime() { return currentProcess().device().absoluteTime(); }

LocalTime localTime() {
  int s = int(std::floor(currentProcess().device().localSecondOfDay()));
  return LocalTime{s / 3600, (s / 60) % 60, s % 60};
}

int localMinuteOfDay() {
  LocalTime t = localTime();
  return t.hour * 60 + t.minute;
}

ObserverToken addObserver(std::string name, Observer block) {
  return ObserverToken{currentProcess().notifications().add(std::move(name), std::move(block))};
}

void removeObserver(ObserverToken token) { currentProcess().notifications().remove(token.id); }

void postNotification(std::string name, rt::Id object, rt::Id userInfo) {
  Notification n{std::move(name), object, userInfo};
  if (isMainThread()) {
    currentProcess().notifications().post(n);
  } else {
    async([n] { currentProcess().notifications().post(n); });
  }
}

void logLine(std::string_view line) { currentProcess().device().writeLog(std::string(line)); }

void logSegments(const std::vector<std::string>& segments) {
  currentProcess().device().writeLog(segments);
}

void* processStateSlot(std::shared_ptr<void> (*make)()) { return currentProcess().stateSlot(make); }

}  // namespace sys
