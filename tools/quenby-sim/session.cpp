#include "session.hpp"

#include <cmath>
#include <cstdio>

#include "launch_hooks.hpp"

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
  device_.reset();
}

sim::Process& Session::requireProcess(std::string_view command) {
  if (!process_) throw ScriptError{std::string(command) + ": the app is not running"};
  return *process_;
}

void Session::launch() {
  if (process_) throw ScriptError{"launch: the app is already running"};
  process_ = std::make_unique<sim::Process>(*device_);
  violationsSeen_ = 0;
  sim::LaunchHooks hooks = launchHooks(*this);
  if (options_.withoutLibrary) hooks.libraryEntry = nullptr;
  process_->launch(hooks);
  settle();
}

void Session::quit() {
  requireProcess("quit");
  process_.reset();
}

void Session::settle() {
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
  if (process_) {
    process_->advance(seconds);
  } else {
    device_->setElapsed(device_->elapsed() + seconds);
  }
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
