// A simulated process on a simulated device: the host app's, or SpringBoard's.
// Each one starts with a fresh runtime (Foundation registered, nothing
// hooked), a fresh main queue and notification centre, and fresh library
// state, so every test and every `launch` is a cold start. The facades of rt
// and sys act on the current process: the newest one alive, unless a thread
// has entered another with InProcess (the system handing SpringBoard a
// notification request).
//
// The app's life is run as iOS runs it: a few seconds after it enters the
// background it is suspended (no main-queue work, no timers, no hooks) until
// it returns to the foreground or is woken by a VoIP push; its overdue timers
// then fire once. Kinder than a phone: memory pressure never ends a suspended
// app by itself (only `quit` does), and work run into the process from outside
// (the panel's setting edits, checks of what its lists answer) is let in while
// it is suspended; and SpringBoard's process is given the app's Documents
// folder when asked for one, where a phone would give its own home.
#pragma once

#include <any>
#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "sim/device/device.hpp"
#include "sim/events/main_queue.hpp"
#include "sim/events/notification_center.hpp"
#include "sim/runtime/runtime.hpp"

namespace sim {

enum class AppState { NotLaunched, Active, Inactive, Background };
enum class ProcessKind { App, SpringBoard };

// What the simulated frameworks hold for one process beyond its objects: the
// biometric prompt waiting for the user, the motion updates asked for, the
// haptics played.
struct PlatformState {
  std::function<void(bool)> biometricReply;  // set while the prompt is up
  std::string biometricReason;
  // The prompt's fallback button title as last asked for ("" removes the
  // button); unset until a prompt is shown.
  std::optional<std::string> biometricFallbackTitle;
  std::function<void(double x, double y, double z)> motionHandler;
  bool motionFromAccelerometer = false;
  double motionInterval = 0;
  std::vector<std::string> haptics;
  // UIKit state kept beside an object's own record (cells, switches, sheets, taps).
  std::map<rt::Id, std::any> objectExtras;
  // The host app's Info.plist strings (CFBundleShortVersionString, …).
  std::map<std::string, std::string> bundleInfo;
};
const char* appStateName(AppState s);

// What the host app and the library do at launch. Each is optional.
struct LaunchHooks {
  // The host binary's own classes (they exist before any code runs).
  std::function<void()> defineHostClasses;
  // The library's single static initialiser.
  std::function<void()> libraryEntry;
  // application:didFinishLaunchingWithOptions: — builds the window and first screen.
  std::function<void()> hostDidFinishLaunching;
  // After the app first becomes active (the first screen has appeared).
  std::function<void()> hostDidBecomeActive;
  // The system's picture of the screen for the app switcher, taken when the
  // app enters the background, once its background notifications are handled.
  std::function<void()> appSwitcherSnapshot;
  // The app runs again after a suspension: the host fetches what arrived
  // meanwhile.
  std::function<void()> hostDidResume;
  // The app has work the system lets it finish before suspending it (a call
  // reported to CallKit and not yet ended).
  std::function<bool()> hostBusy;
};

class Process {
 public:
  explicit Process(Device& device, ProcessKind kind = ProcessKind::App);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  Device& device() { return device_; }
  Runtime& runtime() { return *runtime_; }
  // False once the process has begun to end its runtime.
  bool hasRuntime() const { return runtime_ != nullptr; }
  MainQueue& mainQueue() { return queue_; }
  NotificationCenter& notifications() { return notifications_; }

  // Launches the app: host classes, the library's initialiser, then the
  // platform's launch sequence: didFinishLaunching (with the host's first
  // screen), the scene connecting and entering the foreground, the main queue
  // drained, the scene activating and the app becoming active. Does not
  // advance time.
  void launch(const LaunchHooks& hooks);
  // Launches the app straight into the background, as a VoIP push does for
  // an app that is not running: didFinishLaunching with no scene coming to
  // the foreground; suspended after the grace, as after leaving.
  void launchInBackground(const LaunchHooks& hooks);
  // Resign active and enter the background / come back, with the application
  // and scene notifications in platform order. False when the app is not in
  // the state to do so.
  // Background works from the inactive state too (a system prompt up), and
  // cancels that prompt: its reply is a failure.
  bool enterBackground();
  bool enterForeground();
  // A system prompt (Face ID / Touch ID) appearing makes the active app
  // inactive; answering it runs the reply first, then makes the app active
  // again. False when no prompt is up.
  void systemPromptAppeared();
  bool answerSystemPrompt(bool success);
  AppState appState() const { return state_; }
  ProcessKind kind() const { return kind_; }

  // iOS suspends an app that leaves the foreground without asking for
  // background time once its departure is handled; it allows about five
  // seconds for that (the watchdog's limit on the departure), the grace kept
  // here. The host asks for no background task, and the library must not
  // count on one.
  static constexpr double kSuspendGrace_s = 5.0;
  bool suspended() const { return suspended_; }
  // A VoIP push for the app in the background: a suspended app resumes (its
  // overdue timers fire once) and is suspended again a grace after. False
  // when the app is not in the background.
  bool wake();
  // Runs everything due now / advances virtual time, running every block in
  // order of due time, then of submission. A suspended app runs nothing:
  // its clock moves on.
  void runDue();
  void advance(double seconds);
  // Advances to the device time `until` (never back).
  void runUntil(double until);
  // When this process next has something to do (a block or timer due, or its
  // suspension); false when nothing, or when it is suspended.
  bool nextEvent(double& at) const;

  // Posts a platform notification now, on the main thread.
  void post(const std::string& name);

  // Runs one piece of host event handling. An exception that escapes it would
  // terminate the app on a phone: the process is marked crashed and does
  // nothing more.
  // It ends with the turn's autorelease pool drained.
  void runGuarded(const std::function<void()>& work);
  // Stops the process as a crash would, with that reason (the first one stays).
  void crash(const std::string& reason) {
    if (crash_.empty()) crash_ = reason;
  }
  bool crashed() const { return !crash_.empty(); }
  const std::string& crashReason() const { return crash_; }

  std::thread::id mainThread() const { return mainThread_; }
  PlatformState& platform() { return platform_; }
  // The simulated host app running in this process (owned elsewhere).
  void setHostApp(void* host) { hostApp_ = host; }
  void* hostApp() const { return hostApp_; }
  // Read on every hooked call: once made, without the lock.
  void* stateSlot(std::shared_ptr<void> (*make)()) {
    if (void* made = statePublished_.load(std::memory_order_acquire)) return made;
    return makeStateSlot(make);
  }

 private:
  void* makeStateSlot(std::shared_ptr<void> (*make)());
  void setState(AppState state);
  void resume();

  Device& device_;
  ProcessKind kind_;
  std::unique_ptr<Runtime> runtime_;
  MainQueue queue_;
  NotificationCenter notifications_;
  AppState state_ = AppState::NotLaunched;
  bool suspended_ = false;
  double suspendAt_ = -1;  // device time of the coming suspension; -1 none
  std::string crash_;
  int guardDepth_ = 0;
  std::thread::id mainThread_;
  std::mutex stateMutex_;
  std::shared_ptr<void> state_ptr_;
  std::atomic<void*> statePublished_{nullptr};
  void* hostApp_ = nullptr;
  PlatformState platform_;
  std::function<void()> snapshot_;
  std::function<void()> resumed_;
  std::function<bool()> busy_;
};

// Runs `work`'s thread in another process: the facades act on `process`
// until the scope ends. Scopes nest.
class InProcess {
 public:
  explicit InProcess(Process& process);
  ~InProcess();
  InProcess(const InProcess&) = delete;
  InProcess& operator=(const InProcess&) = delete;

 private:
  Process* saved_;
};

// Moves device time to `until`, running every process's due work in order of
// time across processes (each process in its own order).
void advanceProcesses(const std::vector<Process*>& processes, double until);

// Defines the simulated system frameworks' classes in a fresh runtime. Declared
// here, below the frameworks, and defined by them (frameworks/frameworks.cpp),
// as the facades are defined by a backend: the process starts them without
// knowing them.
void registerFrameworks(Runtime& rtm);

namespace detail {
// The one process the facades act on, as a real library has exactly one.
// Atomic because the host calls some hooks from its other threads, which read
// it while the main thread owns the process.
extern std::atomic<Process*> gCurrent;
// A thread inside another process (InProcess).
extern constinit thread_local Process* tEntered;
[[noreturn]] void noCurrentProcess();
}  // namespace detail

// The current process; aborts when there is none. Inline: every message and
// every hook asks.
inline Process& currentProcess() {
  Process* current =
      detail::tEntered ? detail::tEntered : detail::gCurrent.load(std::memory_order_acquire);
  if (!current) detail::noCurrentProcess();
  return *current;
}
inline bool hasCurrentProcess() {
  return detail::tEntered || detail::gCurrent.load(std::memory_order_acquire) != nullptr;
}

}  // namespace sim
