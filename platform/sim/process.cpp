#include "sim/process.hpp"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "sys/notifications.hpp"

namespace sim {
namespace detail {

std::atomic<Process*> gCurrent{nullptr};
constinit thread_local Process* tEntered = nullptr;

void noCurrentProcess() {
  std::fprintf(stderr, "quenby: the runtime was used with no simulated process running\n");
  std::abort();
}

}  // namespace detail
namespace {

using detail::gCurrent;
using detail::tEntered;
// Every process alive, oldest first: when the current one ends, the newest
// left takes its place.
std::mutex gLiveMutex;
std::vector<Process*> gLive;

}  // namespace

const char* appStateName(AppState s) {
  switch (s) {
    case AppState::NotLaunched:
      return "not launched";
    case AppState::Active:
      return "active";
    case AppState::Inactive:
      return "inactive";
    case AppState::Background:
      return "background";
  }
  return "?";
}

InProcess::InProcess(Process& process) : saved_(tEntered) { tEntered = &process; }
InProcess::~InProcess() { tEntered = saved_; }

Runtime& runtime() { return currentProcess().runtime(); }

Process::Process(Device& device, ProcessKind kind)
    : device_(device),
      kind_(kind),
      runtime_(std::make_unique<Runtime>()),
      mainThread_(std::this_thread::get_id()) {
  {
    std::lock_guard lock(gLiveMutex);
    gLive.push_back(this);
    gCurrent = this;
  }
  InProcess here(*this);
  registerFrameworks(*runtime_);
}

Process::~Process() {
  // The library's state goes first: it may hold blocks and objects of this
  // process; then pending blocks; the runtime and its objects last. Nothing
  // is deallocated one by one on the way.
  runtime_->lifetimes().tearingDown = true;
  {
    InProcess here(*this);
    statePublished_ = nullptr;
    state_ptr_.reset();
    queue_.clear();
    notifications_ = NotificationCenter();
    platform_ = PlatformState();
    runtime_.reset();
  }
  if (kind_ == ProcessKind::App && device_.frontmostApp() == device_.appBundleIdentifier())
    device_.setFrontmostApp("");
  std::lock_guard lock(gLiveMutex);
  gLive.erase(std::remove(gLive.begin(), gLive.end(), this), gLive.end());
  if (gCurrent == this) gCurrent = gLive.empty() ? nullptr : gLive.back();
}

void Process::setState(AppState state) {
  state_ = state;
  if (kind_ != ProcessKind::App) return;
  bool front = state == AppState::Active || state == AppState::Inactive;
  const std::string& mine = device_.appBundleIdentifier();
  if (front)
    device_.setFrontmostApp(mine);
  else if (device_.frontmostApp() == mine)
    device_.setFrontmostApp("");
}

void Process::runGuarded(const std::function<void()>& work) {
  if (crashed()) return;
  ++guardDepth_;
  try {
    work();
    if (guardDepth_ == 1) runtime_->lifetimes().drain();
  } catch (...) {
    crash("uncaught exception " + rt::currentExceptionName() + ": " +
          rt::describeCurrentException());
  }
  --guardDepth_;
}

void Process::post(const std::string& name) {
  runGuarded([&] { notifications_.post(sys::Notification{name, nullptr, nullptr}); });
}

void Process::launch(const LaunchHooks& hooks) {
  setState(AppState::Inactive);
  snapshot_ = hooks.appSwitcherSnapshot;
  resumed_ = hooks.hostDidResume;
  busy_ = hooks.hostBusy;
  if (hooks.defineHostClasses) hooks.defineHostClasses();
  if (hooks.libraryEntry) runGuarded(hooks.libraryEntry);
  if (hooks.hostDidFinishLaunching) runGuarded(hooks.hostDidFinishLaunching);
  post(sys::kDidFinishLaunching);
  post(sys::kSceneWillConnect);
  post(sys::kSceneWillEnterForeground);
  runDue();
  setState(AppState::Active);
  post(sys::kSceneDidActivate);
  post(sys::kDidBecomeActive);
  if (hooks.hostDidBecomeActive) runGuarded(hooks.hostDidBecomeActive);
  runDue();
}

void Process::launchInBackground(const LaunchHooks& hooks) {
  setState(AppState::Background);
  snapshot_ = hooks.appSwitcherSnapshot;
  resumed_ = hooks.hostDidResume;
  busy_ = hooks.hostBusy;
  suspendAt_ = device_.elapsed() + kSuspendGrace_s;
  if (hooks.defineHostClasses) hooks.defineHostClasses();
  if (hooks.libraryEntry) runGuarded(hooks.libraryEntry);
  if (hooks.hostDidFinishLaunching) runGuarded(hooks.hostDidFinishLaunching);
  post(sys::kDidFinishLaunching);
  runDue();
}

void Process::resume() {
  if (!suspended_) return;
  suspended_ = false;
  if (resumed_) runGuarded(resumed_);
}

bool Process::wake() {
  if (state_ != AppState::Background) return false;
  resume();
  suspendAt_ = device_.elapsed() + kSuspendGrace_s;
  runDue();
  return true;
}

bool Process::enterBackground() {
  if (state_ != AppState::Active && state_ != AppState::Inactive) return false;
  if (state_ == AppState::Active) {
    post(sys::kSceneWillDeactivate);
    post(sys::kWillResignActive);
  }
  setState(AppState::Background);
  suspendAt_ = device_.elapsed() + kSuspendGrace_s;
  post(sys::kSceneDidEnterBackground);
  post(sys::kDidEnterBackground);
  if (snapshot_) runGuarded(snapshot_);
  if (auto reply = std::move(platform_.biometricReply)) {
    platform_.biometricReply = nullptr;
    runGuarded([&] { reply(false); });
  }
  runDue();
  return true;
}

void Process::systemPromptAppeared() {
  if (state_ != AppState::Active || !platform_.biometricReply) return;
  // The scene first, then the application, as on leaving and coming back.
  post(sys::kSceneWillDeactivate);
  post(sys::kWillResignActive);
  setState(AppState::Inactive);
}

bool Process::answerSystemPrompt(bool success) {
  auto reply = std::move(platform_.biometricReply);
  platform_.biometricReply = nullptr;
  if (!reply) return false;
  runGuarded([&] { reply(success); });
  if (state_ == AppState::Inactive) {
    setState(AppState::Active);
    post(sys::kSceneDidActivate);
    post(sys::kDidBecomeActive);
  }
  runDue();
  return true;
}

bool Process::enterForeground() {
  if (state_ != AppState::Background) return false;
  suspendAt_ = -1;
  resume();
  post(sys::kSceneWillEnterForeground);
  post(sys::kWillEnterForeground);
  setState(AppState::Active);
  post(sys::kSceneDidActivate);
  post(sys::kDidBecomeActive);
  runDue();
  return true;
}

void Process::runDue() { runUntil(device_.elapsed()); }

void Process::advance(double seconds) { runUntil(device_.elapsed() + (seconds > 0 ? seconds : 0)); }

void Process::runUntil(double until) {
  if (until < device_.elapsed()) until = device_.elapsed();
  for (;;) {
    bool suspending = !suspended_ && suspendAt_ >= 0 && suspendAt_ <= until;
    double runTo = suspending ? std::max(suspendAt_, device_.elapsed()) : until;
    double due;
    sys::Block block;
    while (!suspended_ && !crashed() && queue_.takeNext(runTo, device_.elapsed(), due, block)) {
      if (due > device_.elapsed()) device_.setElapsed(due);
      runGuarded(block);
      block = nullptr;  // what the block held goes with its turn
    }
    if (!suspending || suspended_ || crashed() || suspendAt_ < 0 || suspendAt_ > until) break;
    if (runTo > device_.elapsed()) device_.setElapsed(runTo);
    // An app with a call in progress is kept running, as CallKit keeps it.
    if (busy_ && busy_()) {
      suspendAt_ += kSuspendGrace_s;
      continue;
    }
    suspended_ = true;
    suspendAt_ = -1;
    break;
  }
  device_.setElapsed(until);
}

bool Process::nextEvent(double& at) const {
  if (suspended_ || crashed()) return false;
  bool any = queue_.nextDue(at);
  if (suspendAt_ >= 0 && (!any || suspendAt_ < at)) {
    at = suspendAt_;
    any = true;
  }
  return any;
}

void advanceProcesses(const std::vector<Process*>& processes, double until) {
  for (;;) {
    double next = until;
    bool found = false;
    for (Process* p : processes) {
      double at;
      if (p && p->nextEvent(at) && at <= until && (!found || at < next)) {
        next = at;
        found = true;
      }
    }
    if (!found) break;
    for (Process* p : processes)
      if (p) p->runUntil(next);
  }
  for (Process* p : processes)
    if (p) p->runUntil(until);
}

void* Process::makeStateSlot(std::shared_ptr<void> (*make)()) {
  std::lock_guard lock(stateMutex_);
  if (!state_ptr_) state_ptr_ = make();
  statePublished_.store(state_ptr_.get(), std::memory_order_release);
  return state_ptr_.get();
}

// The runtime's lifetimes reach the process here: an autoreleased object
// waits for the current process's pool (none while it tears down), and a
// message to a freed object stops the process as the phone's crash would.
rt::Id autorelease(rt::Id obj) {
  if (!obj || !hasCurrentProcess() || !currentProcess().hasRuntime()) return obj;
  Lifetimes& l = runtime().lifetimes();
  if (!l.tearingDown) l.autorelease(obj);
  return obj;
}

void messagedFreedObject(rt::Id obj, std::string_view selector) {
  bool isClass = obj->isa && obj->isa->meta;
  std::string line = std::string("message sent to a freed object: ") + (isClass ? "+[" : "-[") +
                     std::string(rt::className(obj->isa)) + " " + std::string(selector) + "]";
  currentProcess().crash(line);
  rt::raise("QBSimFreedObject", line);
}

}  // namespace sim
