#include "session.hpp"

#include <cmath>
#include <cstdio>

#include "launch_hooks.hpp"
#include "sim/springboard/springboard.hpp"
#include "startup/startup.hpp"

namespace qbsim {

std::string formatLogTime(const sim::LogLine& line) {
  char buf[32];
  int s = line.secondOfDay;
  std::snprintf(buf, sizeof buf, "%02d:%02d:%02d.%03d", s / 3600, (s / 60) % 60, s % 60,
                int(std::floor(line.fraction * 1000 + 0.5)) % 1000);
  return buf;
}

Session::Session(const SimOptions& options, std::ostream& out) : options_(options), out_(out) {
  sim::DeviceOptions d;
  d.container = options.container;
  d.seed = options.seed;
  device_ = std::make_unique<sim::Device>(d);
  if (options_.trace) {
    device_->setLogListener([this](const sim::LogLine& l) {
      out_ << "  " << formatLogTime(l) << " " << l.text << "\n";
    });
  }
}

Session::~Session() {
  process_.reset();
  device_->setPresenter(nullptr);
  springboard_.reset();
  device_.reset();
}

sim::Process& Session::springboard() {
  if (springboard_) return *springboard_;
  springboard_ = std::make_unique<sim::Process>(*device_, sim::ProcessKind::SpringBoard);
  const hostapp::HostBuild& build = host_.build;
  springboard::Lacks lacks = [&build](const std::string& cls, const std::string& sel) {
    return sel.empty() ? build.lacksClass(cls) : build.lacksMethod(cls, sel);
  };
  std::function<void()> entry;
  if (jailbreak_ && !options_.withoutLibrary) entry = core::libraryEntry;
  std::vector<std::pair<std::string, std::string>> raising(build.raisingMethods.begin(),
                                                           build.raisingMethods.end());
  springboard::boot(*springboard_, lacks, entry, raising);
  sim::Process* sb = springboard_.get();
  device_->setPresenter([sb](const sim::SystemNotification& n) { springboard::present(*sb, n); });
  return *springboard_;
}

void Session::changeSpringBoard(const std::string& command, const std::function<void()>& change) {
  if (launchedOnce_) throw ScriptError{command + ": only before the first launch"};
  change();
  if (springboard_) {
    device_->setPresenter(nullptr);
    springboard_.reset();
    springboard();
  }
}

void Session::install(bool jailbreak) {
  changeSpringBoard("install", [&] { jailbreak_ = jailbreak; });
}

std::string Session::runState() const {
  if (!process_) return "not-running";
  return process_->suspended() ? "suspended" : "running";
}

void Session::voipPush() {
  if (!process_)
    start(/*inBackground=*/true);
  else
    process_->wake();
  settle();
}

void Session::remoteMessage(const std::string& from, const std::string& text) {
  springboard();
  device_->notices().begin(from, "message", text, device_->localSecondOfDay());
  sim::SystemNotification n = host_.remoteNotification(from, text, device_->appBundleIdentifier());
  device_->present(n);
  settle();
}

sim::Process& Session::requireProcess(std::string_view command) {
  if (!process_) throw ScriptError{std::string(command) + ": the app is not running"};
  return *process_;
}

sim::Process& Session::requireForeground(std::string_view command) {
  sim::Process& p = requireProcess(command);
  sim::AppState state = p.appState();
  if (state != sim::AppState::Active && state != sim::AppState::Inactive)
    throw ScriptError{std::string(command) + ": the app is not in the foreground"};
  return p;
}

void Session::launch() {
  if (process_) throw ScriptError{"launch: the app is already running"};
  start(/*inBackground=*/false);
  settle();
}

void Session::start(bool inBackground) {
  springboard();
  launchedOnce_ = true;
  process_ = std::make_unique<sim::Process>(*device_);
  violationsSeen_ = 0;
  sim::LaunchHooks hooks = launchHooks(*this);
  if (options_.withoutLibrary) hooks.libraryEntry = nullptr;
  if (inBackground)
    process_->launchInBackground(hooks);
  else
    process_->launch(hooks);
}

void Session::quit() {
  requireProcess("quit");
  process_.reset();
}

void Session::settle() {
  if (springboard_) {
    springboard_->runDue();
    if (springboard_->crashed())
      throw ExpectFailure{"SpringBoard crashed: " + springboard_->crashReason()};
  }
  if (!process_) return;
  process_->runDue();
  if (process_->crashed()) {
    std::string reason = process_->crashReason();
    process_.reset();
    throw ExpectFailure{"app crashed: " + reason};
  }
  const auto& v = process_->runtime().violations();
  if (v.size() > violationsSeen_) {
    std::string what = v[violationsSeen_];
    violationsSeen_ = v.size();
    throw ExpectFailure{"runtime violation: " + what};
  }
}

void Session::advance(double seconds) {
  double until = device_->elapsed() + (seconds > 0 ? seconds : 0);
  sim::advanceProcesses({process_.get(), springboard_.get()}, until);
  settle();
}

void Session::withLibrary(const std::function<void()>& work) {
  if (process_) {
    process_->runGuarded(work);
    settle();
    return;
  }
  sim::Process scratch(*device_);
  scratch.setHostApp(&host_);
  scratch.runGuarded(work);
  if (scratch.crashed()) throw ExpectFailure{"app crashed: " + scratch.crashReason()};
}

std::string Session::settingsPath() const {
  return device_->documentsPath() + "/Quenby/config.plist";
}

}  // namespace qbsim
