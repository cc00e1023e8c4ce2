// A simulated device: what outlives one run of the app. Its virtual clock,
// the data containers on disk (the app's and a few other apps', each with the
// container manager's metadata file naming its bundle), the log, the locale, the seeded random
// source, the named fault options, and what the system keeps about the app outside it. Processes
// come and go on it.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "sim/device/notices.hpp"
#include "sim/device/presentation.hpp"
#include "sim/device/system_records.hpp"
#include "sys/files.hpp"

namespace sim {

struct LogLine {
  double elapsed = 0;   // device seconds when it was written
  int secondOfDay = 0;  // local wall-clock time then
  double fraction = 0;  // sub-second part, for printing
  std::string text;
  // The line as a phone's persistent log keeps it: private arguments (the
  // usernames) redacted as "<private>".
  std::string kept;
};

enum class Biometrics { FaceID, TouchID, None };
enum class MotionSensors { Full, Accelerometer, None };

struct DeviceOptions {
  // The app container; empty makes a fresh temporary folder of data containers
  // (the app's among others'), removed with the device. A given folder's
  // parent holds the data containers.
  std::string container;
  // The app's bundle identifier: its main bundle's and its container metadata's.
  std::string bundleIdentifier = "com.example.messenger";
  std::uint64_t seed = 1;
  std::string locale = "zh_CN";
};

// Fault options. Each is named, off by default, and switched on per test.
struct Faults {
  // The next settings-style atomic write "crashes" after writing its temporary
  // file and before the rename.
  bool crashBeforeRename = false;
  // The app container can be read but not changed: creating, writing and
  // moving fail with EROFS, as on a read-only volume.
  bool readOnlyContainer = false;
};

class Device {
 public:
  explicit Device(DeviceOptions options = {});
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  // --- Virtual time. Nothing sleeps: time moves only when told to.
  double elapsed() const { return elapsed_; }
  void setElapsed(double t) { elapsed_ = t; }
  // Monotonic, since boot (the device booted a while before the app starts,
  // as a phone has).
  double mediaTime() const { return kBootUptime + elapsed_; }
  // Seconds since 2001-01-01 00:00 UTC; local time is UTC on this device.
  double absoluteTime() const;
  // Local seconds since midnight.
  double localSecondOfDay() const;
  // Sets the wall clock to HH:MM:00 today; the monotonic clock is untouched.
  void setLocalTime(int hour, int minute);

  // --- The container.
  const std::string& containerPath() const { return container_; }
  std::string documentsPath() const { return container_ + "/Documents"; }
  // The folder of every app's data container
  // (Containers/Data/Application on a phone).
  const std::string& dataContainersPath() const { return dataContainers_; }

  // --- The log every NSLog line reaches.
  // A line whose parts are public and private in turn (the first public).
  void writeLog(const std::vector<std::string>& segments);
  void writeLog(std::string line) { writeLog(std::vector<std::string>{std::move(line)}); }
  const std::vector<LogLine>& log() const { return log_; }
  void setLogListener(std::function<void(const LogLine&)> listener) {
    logListener_ = std::move(listener);
  }

  const std::string& locale() const { return options_.locale; }
  std::mt19937_64& random() { return random_; }
  std::uint64_t seed() const { return options_.seed; }
  Faults& faults() { return faults_; }
  // The items marked to stay out of the phone's backups (the resource value
  // lives with the item on a phone; here, by path).
  void excludeFromBackup(const std::string& path) {
    std::lock_guard lock(logMutex_);
    backupExcluded_.insert(path);
  }
  bool excludedFromBackup(const std::string& path) const {
    std::lock_guard lock(logMutex_);
    return backupExcluded_.count(path) != 0;
  }

  // --- Backups, as the phone takes them: the container's folders and regular
  // files with their protection classes, less what is marked excluded (and
  // what it holds), tmp/ and Library/Caches/, which no backup holds, and the
  // container manager's metadata, which is the system's. A new backup
  // replaces the last one.
  void takeBackup();
  bool hasBackup() const { return backup_.has_value(); }
  // Wipes the container (all but its metadata) and puts the last backup in
  // its place; false (and nothing touched) when none was taken. The app must
  // not be running.
  bool restoreBackup();

  // --- What the user saw, heard and felt of each message and call.
  Notices& notices() { return notices_; }
  // --- What the system keeps about the app outside it (lock screen,
  // suggestions, search).
  SystemRecords& records() { return records_; }

  // --- The app on this device and what the system shows of it.
  // The app's bundle identifier.
  const std::string& appBundleIdentifier() const { return options_.bundleIdentifier; }
  // The bundle identifier of the app in the foreground; "" for the home or
  // lock screen.
  std::string frontmostApp() const {
    std::lock_guard lock(logMutex_);
    return frontmost_;
  }
  void setFrontmostApp(std::string bundleIdentifier) {
    std::lock_guard lock(logMutex_);
    frontmost_ = std::move(bundleIdentifier);
  }
  // Shows a notification as the system does: through SpringBoard once it has
  // started (its presenter), else straight onto the notices and
  // Notification Center.
  void present(const SystemNotification& n);
  void setPresenter(std::function<void(const SystemNotification&)> presenter) {
    presenter_ = std::move(presenter);
  }

  // --- Darwin notifications: names posted by one process, checked by others.
  void postDarwinNotification(const std::string& name);
  // A token for `name`; its first check says posted, as notify_check does.
  int watchDarwinNotification(const std::string& name);
  // Whether `name` was posted since this token's last check.
  bool darwinNotificationPosted(int token);

  // --- Data protection. Locked since a restart (`device locked`), no file of
  // the container can be read or written with a protection class, whatever
  // the class; only what was written without protection can be read, until
  // the first unlock. Files from before this device object (a container on
  // disk) count as protected, as the host's own files are.
  bool lockedSinceRestart() const;
  void setLockedSinceRestart(bool locked);
  // Records the class the file at `path` was last written with.
  void noteProtection(const std::string& path, sys::FileProtection protection);
  void noteMoved(const std::string& from, const std::string& to);
  // The class the file at `path` was last written with on this device.
  std::optional<sys::FileProtection> protectionOf(const std::string& path) const;
  // Whether the file at `path` may be read now.
  bool mayRead(const std::string& path) const;

  // --- Hardware.
  Biometrics biometrics = Biometrics::FaceID;
  MotionSensors motion = MotionSensors::Full;

  static constexpr double kBootUptime = 86400.0 * 3 + 1234.5;

 private:
  // Lays out the fresh device's data containers: the app's and two others'.
  void makeContainers();
  // Writes the container manager's metadata file into `container` when it
  // has none; readable at any time, as the system's own file is.
  void writeMetadata(const std::string& container, const std::string& bundleIdentifier);

  DeviceOptions options_;
  std::string container_;
  std::string dataContainers_;
  std::string ownedRoot_;  // removed with the device when set
  double elapsed_ = 0;
  double wallOffset_;            // absolute time at elapsed 0
  mutable std::mutex logMutex_;  // lines may come from any thread
  std::vector<LogLine> log_;
  std::function<void(const LogLine&)> logListener_;
  std::mt19937_64 random_;
  Faults faults_;
  std::set<std::string> backupExcluded_;
  struct BackupItem {
    std::string relativePath;
    bool folder = false;
    std::string bytes;
    std::optional<sys::FileProtection> protection;
  };
  std::optional<std::vector<BackupItem>> backup_;
  mutable std::mutex protectionMutex_;  // files may be read from any thread
  bool lockedSinceRestart_ = false;
  std::map<std::string, sys::FileProtection> protection_;
  Notices notices_;
  SystemRecords records_;
  std::string frontmost_;                             // under logMutex_
  std::map<std::string, std::uint64_t> darwinPosts_;  // under logMutex_
  struct DarwinWatch {
    std::string name;
    std::optional<std::uint64_t> seen;
  };
  std::vector<DarwinWatch> darwinWatches_;  // under logMutex_
  std::function<void(const SystemNotification&)> presenter_;
};

}  // namespace sim
