// QBConfig: the one settings-and-state object of the system. It holds every
// user setting, the secret set and the visibility flags, loads them from the
// settings file once per process and writes them back on `save`. Setters
// neither save nor notify; the secret-set and window-editing operations save
// by themselves but never notify.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/value.hpp"
#include "core/daily_window.hpp"
#include "core/gate_file.hpp"
#include "sys/files.hpp"

namespace core {

inline constexpr const char* kDefaultPassword = "7351";
inline constexpr const char* kSecretStateChanged = "QBSecretStateChanged";

class QBConfig {
 public:
  // The process's singleton, created and loaded on first use (thread-safe).
  static QBConfig& shared();

  // Documents/Quenby/config.plist; creates the folder on every call.
  std::string configURL();
  // Replaces every persisted field from the file, with the migrations and
  // repairs of old or damaged data. Called once, by shared(). A file that
  // cannot be read or is not a dictionary gives every default and is kept
  // aside (logged). A file closed by data protection (the phone not unlocked
  // since it started) is left alone: the gating runs on the hashes of the
  // gate file until the file is read, on
  // UIApplicationProtectedDataDidBecomeAvailable.
  void load();
  // Writes exactly the 17 keys, readable once the phone has been unlocked
  // after a restart, and the gate file beside them. A failed write logs one
  // line and keeps the settings in memory; a file load could not keep aside is
  // never written over (each save tries again to move it first); nothing is
  // written while the file has not been read yet.
  void save();
  // True while the settings file exists but could not be read yet.
  bool waitingForProtectedData() const { return waitingForFile_; }
  // What save writes, in its order (also what the simulator shows).
  base::Value settingsDictionary();
  // The load rules applied to a file's root value (any value: a non-dictionary
  // gives every default). Pure apart from the fields it sets.
  void applySettings(const base::Value& root);

  // --- Settings. Plain accessors: a stale read from another thread is fine.
  bool shakeHideEnabled() const { return shakeHide_; }
  void setShakeHideEnabled(bool v) { shakeHide_ = v; }
  bool shakeShowEnabled() const { return shakeShow_; }
  void setShakeShowEnabled(bool v) { shakeShow_ = v; }
  bool shakeToggleEnabled() const { return shakeHide_ || shakeShow_; }
  void setShakeToggleEnabled(bool v) { shakeHide_ = v, shakeShow_ = v; }
  bool longPressUnlockEnabled() const { return longPress_; }
  void setLongPressUnlockEnabled(bool v) { longPress_ = v; }
  bool showNeedsAuth() const { return showNeedsAuth_; }
  void setShowNeedsAuth(bool v) { showNeedsAuth_ = v; }
  bool passwordFallbackEnabled() const { return passwordFallback_; }
  void setPasswordFallbackEnabled(bool v) { passwordFallback_ = v; }
  bool backgroundNotifyEnabled() const { return backgroundNotify_; }
  void setBackgroundNotifyEnabled(bool v) { backgroundNotify_ = v; }
  bool voipVoiceNotifyEnabled() const { return voipVoice_; }
  void setVoipVoiceNotifyEnabled(bool v) { voipVoice_ = v; }
  bool voipVideoNotifyEnabled() const { return voipVideo_; }
  void setVoipVideoNotifyEnabled(bool v) { voipVideo_ = v; }
  bool suppressAutoLock() const { return suppressAutoLock_; }
  void setSuppressAutoLock(bool v) { suppressAutoLock_ = v; }
  bool suppressSessionApply() const { return suppressSessionApply_; }
  void setSuppressSessionApply(bool v) { suppressSessionApply_ = v; }
  long panelAuthMode() const { return panelAuthMode_; }
  void setPanelAuthMode(long v) { panelAuthMode_ = v; }
  long revealAuthMode() const { return revealAuthMode_; }
  void setRevealAuthMode(long v) { revealAuthMode_ = v; }
  // The old single key: always the panel mode.
  long authMode() const { return panelAuthMode(); }
  void setAuthMode(long v) { setPanelAuthMode(v); }
  long visibilityControlMode() const { return visibilityControl_; }
  void setVisibilityControlMode(long v) { visibilityControl_ = v; }
  bool usesManualVisibility() const { return visibilityControl_ == 0; }
  bool usesScheduleVisibility() const { return visibilityControl_ == 1; }
  long secretNotifyMode() const { return secretNotifyMode_; }
  void setSecretNotifyMode(long v) { secretNotifyMode_ = v; }
  std::string password() const;
  void setPassword(std::string v);
  // The raw stored list; readers use normalizedDailyWindows().
  DailyWindows dailyWindows() const;
  void setDailyWindowsField(DailyWindows v);

  // --- Daily windows (class methods: pure functions).
  static DailyWindow QBWindow(long start, long end, long mode);
  static long clampMinute(long minute);
  static long modeFromWindow(const base::Value& window);
  static std::string stringFromWindowMode(long mode);
  // minute:isInWindowStart:end: — half-open, midnight-crossing membership.
  static bool isMinuteInWindow(long minute, long start, long end);
  // windowStart:end:overlapsStart:end: — some minute of the day lies in both.
  static bool windowsOverlap(long start1, long end1, long start2, long end2);
  static std::string stringFromMinute(long minute);
  static std::string stringFromWindow(const base::Value& window);
  static DailyWindows defaultDailyWindows();
  static std::optional<DailyWindows> sanitizeWindowsArray(const base::Value& value);
  static bool validateDailyWindows(const base::Value& value, std::string* errorMessage);

  DailyWindows normalizedDailyWindows() const;
  // Whether the daily windows show the secrets at `minute` of the day.
  bool scheduleShowsAt(long minute) const;
  bool setDailyWindows(const base::Value& windows, std::string* errorMessage);
  bool updateDailyWindowAtIndex(long index, long start, long end, long mode,
                                std::string* errorMessage);
  bool addDailyWindowWithStart(long start, long end, long mode, std::string* errorMessage);
  bool removeDailyWindowAtIndex(long index, std::string* errorMessage);

  // --- The secret set (under the lock) and the visibility state.
  bool isSecretUser(std::string_view username) const;
  void addSecretUser(std::string_view username);
  void removeSecretUser(std::string_view username);
  void clearAllSecretUsers();
  std::unordered_set<std::string> secretSnapshot() const;
  long secretCount() const;

  bool unlocked() const { return unlocked_; }
  void setUnlocked(bool v) {
    unlocked_ = v;
    changed();
  }
  // Grows on every change of the secret set or the visibility state, so a
  // reader that keeps something worked out from them can tell it is stale.
  std::uint64_t revision() const { return revision_.load(std::memory_order_acquire); }
  bool shouldHideSecrets() const;
  void lock();
  bool tryUnlockSilentWithPassword(std::string_view entered);
  bool tryUnlockWithPassword(std::string_view entered);
  void requestVisibilitySync();
  void notifyStateChangedDeferred();

 private:
  // The *Locked members expect lock_ held by the caller; load holds it
  // throughout, save only around what it reads or changes.
  // Sets aside the unusable file at `path` when one was `found` now or is
  // still in place from before. False, with `error`, while it is in place.
  bool moveUnusableAside(const std::string& path, bool found, std::string* error);
  bool moveUnusableAsideLocked(const std::string& path, bool found, std::string* error);
  void applySettingsLocked(const base::Value& root);
  // load's steps once the file's status is known; false when it is still
  // closed by data protection.
  bool applyFileLocked(const std::string& path, const sys::PlistFile& file);
  // Gating from the gate file, while the settings file is closed.
  void applyGateLocked();
  // The settings file, read at last after the first unlock.
  void readAfterUnlock();
  // The gate record the settings give now (choosing the salt once).
  GateRecord gateRecordLocked(const std::optional<GateRecord>& old);
  // Writes the gate file when it differs from what the settings say.
  void writeGate();
  void writeGateLocked();
  void changed() { revision_.fetch_add(1, std::memory_order_acq_rel); }
  // After every change of the set, the gate or which of them answers: the
  // count is read on every hooked call, without the lock.
  void recountLocked() {
    secretCount_.store(long(waitingForFile_ ? gateHashes_.size() : secrets_.size()),
                       std::memory_order_release);
  }

  // The secret set, the two non-scalar settings, load and save. Not
  // recursive: nothing that holds it may call a member that takes it.
  mutable std::mutex lock_;
  std::unordered_set<std::string> secrets_;
  std::atomic<bool> unlocked_{false};
  std::atomic<std::uint64_t> revision_{0};
  std::atomic<bool> shakeHide_{true}, shakeShow_{true}, longPress_{true}, showNeedsAuth_{true},
      passwordFallback_{true}, backgroundNotify_{false}, voipVoice_{false}, voipVideo_{false},
      suppressAutoLock_{false}, suppressSessionApply_{false};
  std::string password_ = kDefaultPassword;
  std::atomic<long> panelAuthMode_{0}, revealAuthMode_{0}, visibilityControl_{0},
      secretNotifyMode_{0};
  DailyWindows dailyWindows_ = defaultDailyWindows();
  bool unusableInPlace_ = false;  // a file load could not keep aside
  // The settings file exists but is closed by data protection: saves are
  // refused and the secret set is known only by gateHashes_.
  std::atomic<bool> waitingForFile_{false};
  std::unordered_set<std::string> gateHashes_;  // under lock_
  std::atomic<long> secretCount_{0};
  std::string gateSalt_;  // under lock_
  // The gate's answer by username, so a list reloaded while the phone is
  // locked hashes each name once; under lock_.
  mutable std::unordered_map<std::string, bool> gateAnswers_;
  std::uint64_t unlockObserver_ = 0;
};

}  // namespace core
