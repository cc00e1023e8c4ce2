// One simulated device and the app process running on it, driven command by
// command. A script file, the REPL and the demo each run on their own session.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "sim/hostapp/host_app.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"

namespace qbsim {

struct SimOptions {
  std::string container;  // empty: a fresh temporary container
  bool trace = false;
  std::string picturesDir;  // non-empty: a numbered picture after every show of a screen
  // Shared by every session of a run, so the files of `run A B` number on.
  std::shared_ptr<int> picturesTaken = std::make_shared<int>(0);
  std::uint64_t seed = 1;
  // For tests: `launch` starts the host alone, with nothing hooked, so a test
  // can show that a scenario notices when nothing hides.
  bool withoutLibrary = false;
};

// A command that cannot be run as written: exit status 2.
struct ScriptError {
  std::string message;
};
// An expectation that did not hold, or an app that crashed: exit status 1.
struct ExpectFailure {
  std::string message;
};

class Session {
 public:
  Session(const SimOptions& options, std::ostream& out);
  ~Session();

  sim::Device& device() { return *device_; }
  // The simulated host app: its data and build outlive its processes.
  hostapp::HostApp& host() { return host_; }
  // The running app's process, or null when the app is not running.
  sim::Process* process() { return process_.get(); }
  // The running process; a script error naming `command` when there is none.
  sim::Process& requireProcess(std::string_view command);
  // The same, for a command that acts on the app's screen: the app must be
  // in the foreground, as a person can touch only what is shown.
  sim::Process& requireForeground(std::string_view command);

  void launch();
  void quit();
  // How the library reached the phone: on a jailbroken install the package
  // also loads it into SpringBoard. Only before the first launch.
  void install(bool jailbreak);
  // Changes how SpringBoard is built (what it lacks): only before the first
  // launch; a SpringBoard already started for an early message starts again.
  void changeSpringBoard(const std::string& command, const std::function<void()>& change);
  // The app as iOS sees it: "running" (foreground or background),
  // "suspended" or "not-running".
  std::string runState() const;
  // A VoIP push for the app: wakes a suspended app, launches one that is not
  // running straight into the background; the app runs then.
  void voipPush();
  // A message the app cannot take now (suspended or not running): the host's
  // server sends it as a remote notification, which the system presents.
  void remoteMessage(const std::string& from, const std::string& text);
  // Whether the running app may run code now (not suspended).
  bool appAwake() const { return process_ && !process_->suspended(); }
  // SpringBoard's process, started with the device on first need.
  sim::Process& springboard();
  // Runs what is due now, then fails if the app crashed or a call broke the
  // runtime's type rules.
  void settle();
  // Advances virtual time with the app running or not.
  void advance(double seconds);
  // Runs library code the way the panel would: in the running app, or, when
  // the app is not running, in a short-lived process that only loads the
  // library's settings (as a panel edit before launch would leave the file).
  void withLibrary(const std::function<void()>& work);

  std::ostream& out() { return out_; }
  bool trace() const { return options_.trace; }
  const std::string& picturesDir() const { return options_.picturesDir; }
  // 1, 2, 3…: the number of the next picture of this run's story.
  int nextPictureNumber() { return ++*options_.picturesTaken; }
  // The settings file of the app in this device's container.
  std::string settingsPath() const;

 private:
  // A new app process with SpringBoard beside it, launched into the
  // foreground or, as a VoIP push launches it, the background.
  void start(bool inBackground);

  SimOptions options_;
  std::ostream& out_;
  std::unique_ptr<sim::Device> device_;
  hostapp::HostApp host_;
  std::unique_ptr<sim::Process> process_;
  std::unique_ptr<sim::Process> springboard_;
  bool jailbreak_ = true;
  bool launchedOnce_ = false;
  std::size_t violationsSeen_ = 0;
};

std::string formatLogTime(const sim::LogLine& line);

}  // namespace qbsim
