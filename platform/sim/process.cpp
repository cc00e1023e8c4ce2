#include "sim/process.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "sys/notifications.hpp"

namespace sim {
namespace {

// The one process the facades act on, as a real library has exactly one.
// Atomic because the host calls some hooks from its other threads, which read
// it while the main thread owns the process.
std::atomic<Process*> gCurrent{nullptr};

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

Process& currentProcess() {
  Process* current = gCurrent.load(std::memory_order_acquire);
  if (!current) {
    std::fprintf(stderr, "quenby: the runtime was used with no simulated process running\n");
    std::abort();
  }
  return *current;
}

bool hasCurrentProcess() { return gCurrent.load(std::memory_order_acquire) != nullptr; }

Runtime& runtime() { return currentProcess().runtime(); }

Process::Process(Device& device)
    : device_(device),
      previous_(gCurrent),
      runtime_(std::make_unique<Runtime>()),
      mainThread_(std::this_thread::get_id()) {
  gCurrent = this;
  registerFrameworks(*runtime_);
}

Process::~Process() {
  // The library's state goes first: it may hold blocks and objects of this
  // process; then pending blocks; the runtime and its objects last. Nothing
  // is deallocated one by one on the way.
  runtime_->lifetimes().tearingDown = true;
  statePublished_ = nullptr;
  state_ptr_.reset();
  queue_.clear();
  notifications_ = NotificationCenter();
  platform_ = PlatformState();
  runtime_.reset();
  gCurrent = previous_;
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
  state_ = AppState::Inactive;
  snapshot_ = hooks.appSwitcherSnapshot;
  if (hooks.defineHostClasses) hooks.defineHostClasses();
  if (hooks.libraryEntry) runGuarded(hooks.libraryEntry);
  if (hooks.hostDidFinishLaunching) runGuarded(hooks.hostDidFinishLaunching);
  post(sys::kDidFinishLaunching);
  post(sys::kSceneWillConnect);
  post(sys::kSceneWillEnterForeground);
  runDue();
  state_ = AppState::Active;
  post(sys::kSceneDidActivate);
  post(sys::kDidBecomeActive);
  if (hooks.hostDidBecomeActive) runGuarded(hooks.hostDidBecomeActive);
  runDue();
}

bool Process::enterBackground() {
  if (state_ != AppState::Active && state_ != AppState::Inactive) return false;
  if (state_ == AppState::Active) {
    post(sys::kSceneWillDeactivate);
    post(sys::kWillResignActive);
  }
  state_ = AppState::Background;
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
  post(sys::kWillResignActive);
  post(sys::kSceneWillDeactivate);
  state_ = AppState::Inactive;
}

bool Process::answerSystemPrompt(bool success) {
  auto reply = std::move(platform_.biometricReply);
  platform_.biometricReply = nullptr;
  if (!reply) return false;
  runGuarded([&] { reply(success); });
  if (state_ == AppState::Inactive) {
    state_ = AppState::Active;
    post(sys::kDidBecomeActive);
    post(sys::kSceneDidActivate);
  }
  runDue();
  return true;
}

bool Process::enterForeground() {
  if (state_ != AppState::Background) return false;
  post(sys::kSceneWillEnterForeground);
  post(sys::kWillEnterForeground);
  state_ = AppState::Active;
  post(sys::kSceneDidActivate);
  post(sys::kDidBecomeActive);
  runDue();
  return true;
}

void Process::runDue() { advance(0); }

void Process::advance(double seconds) {
  double until = device_.elapsed() + (seconds > 0 ? seconds : 0);
  double due;
  sys::Block block;
  while (!crashed() && queue_.takeNext(until, due, block)) {
    if (due > device_.elapsed()) device_.setElapsed(due);
    runGuarded(block);
    block = nullptr;  // what the block held goes with its turn
  }
  device_.setElapsed(until);
}

void* Process::stateSlot(std::shared_ptr<void> (*make)()) {
  // Read on every hooked call: once made, without the lock.
  if (void* made = statePublished_.load(std::memory_order_acquire)) return made;
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
