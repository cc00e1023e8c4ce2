// The settings file: where it lives, how load migrates and repairs what it
// finds there, and the 17 keys save writes.
#include "core/config.hpp"

#include <algorithm>

#include "core/gate_file.hpp"
#include "core/kept_aside.hpp"
#include "sys/darwin_notify.hpp"
#include "sys/files.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/process_state.hpp"

namespace core {
namespace {

struct ConfigSlot {
  std::once_flag once;
  std::unique_ptr<QBConfig> config;
  std::atomic<QBConfig*> loaded{nullptr};  // set once load has finished
};

bool boolOr(const base::Value& root, const char* key, bool fallback) {
  const base::Value* v = root.find(key);
  return v ? v->boolValue().value_or(fallback) : fallback;
}

// integerValue of a present key that answers it; nullopt otherwise.
std::optional<long> integerOf(const base::Value& root, const char* key) {
  const base::Value* v = root.find(key);
  return v ? v->integerValue() : std::nullopt;
}

// Modes are compared unsigned, so a negative one is out of range too.
long inRange(long v, unsigned long max) { return static_cast<unsigned long>(v) <= max ? v : 0; }

bool hasKey(const base::Value& root, const char* key) { return root.find(key) != nullptr; }

std::optional<GateRecord> readGate() {
  sys::PlistFile file = sys::readPropertyListFile(gateFilePath());
  return file.status == sys::ReadStatus::Read ? gateFromValue(file.value) : std::nullopt;
}

// Writes `record` unless the file already holds it.
void storeGate(const GateRecord& record, const std::optional<GateRecord>& old) {
  if (old && *old == record) return;
  std::string error;
  if (!sys::writePropertyList(gateFilePath(), gateValue(record), sys::PlistFormat::Xml, &error,
                              sys::FileProtection::None))
    sys::log("[QB] gate save failed: %@", error);
  else
    sys::postDarwinNotification(kGateChangedNotification);
}

}  // namespace

QBConfig& QBConfig::shared() {
  ConfigSlot& slot = sys::state<ConfigSlot>();
  // Every hooked call asks: after the first, one atomic read.
  if (QBConfig* c = slot.loaded.load(std::memory_order_acquire)) return *c;
  std::call_once(slot.once, [&] {
    slot.config = std::make_unique<QBConfig>();
    slot.config->load();
    slot.loaded.store(slot.config.get(), std::memory_order_release);
  });
  return *slot.config;
}

std::string QBConfig::configURL() {
  std::string folder = sys::documentsDirectory() + "/Quenby";
  sys::createDirectories(folder);
  return folder + "/config.plist";
}

std::string QBConfig::password() const {
  std::lock_guard lock(lock_);
  return password_;
}

void QBConfig::setPassword(std::string v) {
  std::lock_guard lock(lock_);
  password_ = std::move(v);
}

DailyWindows QBConfig::dailyWindows() const {
  std::lock_guard lock(lock_);
  return dailyWindows_;
}

void QBConfig::setDailyWindowsField(DailyWindows v) {
  std::lock_guard lock(lock_);
  dailyWindows_ = std::move(v);
}

void QBConfig::load() {
  {
    std::lock_guard lock(lock_);
    std::string path = configURL();
    if (applyFileLocked(path, sys::readPropertyListFile(path))) return;
    // Closed until the first unlock: not damaged, so neither kept aside nor
    // replaced. Until it is read, the gating knows the secrets by their hashes.
    applySettingsLocked(base::Value());
    applyGateLocked();
    waitingForFile_ = true;
    recountLocked();
    sys::log("[QB] config protected until first unlock");
  }
  // Outside the lock: the centre may call its observers under a lock of its own.
  unlockObserver_ =
      sys::addObserver(sys::kProtectedDataDidBecomeAvailable, [this](const sys::Notification&) {
        readAfterUnlock();
      }).id;
}

bool QBConfig::applyFileLocked(const std::string& path, const sys::PlistFile& file) {
  if (file.status == sys::ReadStatus::NotYetReadable) return false;
  bool usable = file.status == sys::ReadStatus::Read && file.value.isDictionary();
  if (file.status != sys::ReadStatus::Missing && !usable) {
    std::string error;
    if (!moveUnusableAsideLocked(path, true, &error))
      sys::log("[QB] config unreadable, left in place: %@", error);
  }
  applySettingsLocked(usable ? file.value : base::Value());
  // A file from before the gate file existed gets one now, so a restart
  // before the next save still gates.
  if (usable) writeGateLocked();
  return true;
}

void QBConfig::applyGateLocked() {
  std::optional<GateRecord> gate = readGate();
  if (!gate) return;  // nothing known: every default
  secretNotifyMode_ = gate->notifyMode;
  backgroundNotify_ = gate->notifyMode != 0;
  voipVoice_ = gate->voipVoice;
  voipVideo_ = gate->voipVideo;
  gateSalt_ = gate->salt;
  gateHashes_ = std::move(gate->hashes);
  gateAnswers_.clear();
  changed();
}

void QBConfig::readAfterUnlock() {
  {
    std::lock_guard lock(lock_);
    if (!waitingForFile_) return;
    std::string path = configURL();
    // The transient state is the running process's, not the file's.
    bool wasUnlocked = unlocked_, autoLock = suppressAutoLock_,
         sessionApply = suppressSessionApply_;
    if (!applyFileLocked(path, sys::readPropertyListFile(path))) return;
    unlocked_ = wasUnlocked;
    suppressAutoLock_ = autoLock;
    suppressSessionApply_ = sessionApply;
    // Together, so a reader on another thread never sees an empty gate as the answer.
    waitingForFile_ = false;
    gateHashes_.clear();
    gateAnswers_.clear();
    recountLocked();
  }
  changed();
  sys::removeObserver(sys::ObserverToken{unlockObserver_});
  sys::log("[QB] config read after first unlock");
  requestVisibilitySync();
}

GateRecord QBConfig::gateRecordLocked(const std::optional<GateRecord>& old) {
  GateRecord record;
  record.notifyMode = secretNotifyMode();
  record.voipVoice = voipVoiceNotifyEnabled();
  record.voipVideo = voipVideoNotifyEnabled();
  record.visibilityControl = visibilityControlMode();
  // normalizedDailyWindows() takes the lock this caller holds.
  record.windows = validateDailyWindows(windowsValue(dailyWindows_), nullptr)
                       ? dailyWindows_
                       : defaultDailyWindows();
  std::stable_sort(record.windows.begin(), record.windows.end(),
                   [](const DailyWindow& a, const DailyWindow& b) { return a.start < b.start; });
  if (gateSalt_.empty()) gateSalt_ = old ? old->salt : newGateSalt();
  record.salt = gateSalt_;
  for (const std::string& name : secrets_) record.hashes.insert(gateHash(gateSalt_, name));
  return record;
}

void QBConfig::writeGate() {
  std::optional<GateRecord> old = readGate();
  GateRecord record;
  {
    std::lock_guard lock(lock_);
    record = gateRecordLocked(old);
  }
  storeGate(record, old);
}

void QBConfig::writeGateLocked() {
  std::optional<GateRecord> old = readGate();
  storeGate(gateRecordLocked(old), old);
}

bool QBConfig::moveUnusableAsideLocked(const std::string& path, bool found, std::string* error) {
  unusableInPlace_ = (unusableInPlace_ || found) && !keepAside(path, error);
  return !unusableInPlace_;
}

bool QBConfig::moveUnusableAside(const std::string& path, bool found, std::string* error) {
  std::lock_guard lock(lock_);
  return moveUnusableAsideLocked(path, found, error);
}

void QBConfig::applySettings(const base::Value& file) {
  std::lock_guard lock(lock_);
  applySettingsLocked(file);
}

void QBConfig::applySettingsLocked(const base::Value& file) {
  static const base::Value kEmpty{base::Dictionary{}};
  const base::Value& root = file.isDictionary() ? file : kEmpty;

  const base::Value* pw = root.find("password");
  password_ = pw && pw->isString() ? *pw->asString() : kDefaultPassword;
  unlocked_ = false;

  bool toggle = boolOr(root, "shakeToggle", true);
  shakeHide_ = boolOr(root, "shakeHide", toggle);
  shakeShow_ = boolOr(root, "shakeShow", toggle);
  showNeedsAuth_ = boolOr(root, "showNeedsAuth", true);
  longPress_ = boolOr(root, "longPressUnlock", true);
  passwordFallback_ = boolOr(root, "passwordFallback", true);

  long legacy = inRange(integerOf(root, "authMode").value_or(0), 1);
  panelAuthMode_ = inRange(integerOf(root, "panelAuthMode").value_or(legacy), 1);
  revealAuthMode_ = inRange(integerOf(root, "revealAuthMode").value_or(legacy), 1);

  secretNotifyMode_ = inRange(integerOf(root, "secretNotifyMode").value_or(0), 2);
  // Always re-derived from the notify mode; the stored key is not read.
  backgroundNotify_ = secretNotifyMode_ != 0;
  voipVoice_ = boolOr(root, "voipVoiceNotify", false);
  voipVideo_ = boolOr(root, "voipVideoNotify", false);
  visibilityControl_ = inRange(integerOf(root, "visibilityControl").value_or(0), 1);

  const base::Value* stored = root.find("dailyWindows");
  std::optional<DailyWindows> windows = sanitizeWindowsArray(stored ? *stored : base::Value());
  if (!windows && (hasKey(root, "dailyShowMinute") || hasKey(root, "dailyHideMinute"))) {
    long show = clampMinute(integerOf(root, "dailyShowMinute").value_or(480));
    long hide = clampMinute(integerOf(root, "dailyHideMinute").value_or(1320));
    if (show != hide) windows = DailyWindows{QBWindow(show, hide, 0)};
  }
  if (windows && !validateDailyWindows(windowsValue(*windows), nullptr)) {
    DailyWindows kept;
    for (const DailyWindow& w : *windows) {
      DailyWindows trial = kept;
      trial.push_back(w);
      if (validateDailyWindows(windowsValue(trial), nullptr)) kept = std::move(trial);
    }
    windows = kept.empty() ? std::nullopt : std::optional<DailyWindows>(std::move(kept));
  }
  if (!windows || !validateDailyWindows(windowsValue(*windows), nullptr))
    windows = defaultDailyWindows();
  dailyWindows_ = std::move(*windows);

  suppressAutoLock_ = false;
  suppressSessionApply_ = false;

  std::unordered_set<std::string> secrets;
  if (const base::Value* s = root.find("secrets"); s && s->isArray()) {
    for (const base::Value& e : *s->asArray())
      if (const std::string* name = e.asString(); name && !name->empty()) secrets.insert(*name);
  }
  secrets_ = std::move(secrets);
  recountLocked();
  changed();
}

base::Value QBConfig::settingsDictionary() {
  DailyWindows windows;
  std::string pw;
  base::Array secrets;
  {
    std::lock_guard lock(lock_);
    windows = dailyWindows_;
    pw = password_;
    secrets.reserve(secrets_.size());
    for (const std::string& s : secrets_) secrets.emplace_back(s);
  }
  base::Value storedWindows = windowsValue(windows);
  if (!validateDailyWindows(storedWindows, nullptr))
    storedWindows = windowsValue(defaultDailyWindows());
  long panel = panelAuthMode();
  return base::Value(base::Dictionary{
      {"password", base::Value(pw)},
      {"secrets", base::Value(std::move(secrets))},
      {"shakeToggle", base::Value(shakeToggleEnabled())},
      {"shakeHide", base::Value(shakeHideEnabled())},
      {"shakeShow", base::Value(shakeShowEnabled())},
      {"showNeedsAuth", base::Value(showNeedsAuth())},
      {"longPressUnlock", base::Value(longPressUnlockEnabled())},
      {"passwordFallback", base::Value(passwordFallbackEnabled())},
      {"panelAuthMode", base::Value(panel)},
      {"revealAuthMode", base::Value(revealAuthMode())},
      {"authMode", base::Value(panel)},
      {"secretNotifyMode", base::Value(secretNotifyMode())},
      {"backgroundNotify", base::Value(backgroundNotifyEnabled())},
      {"voipVoiceNotify", base::Value(voipVoiceNotifyEnabled())},
      {"voipVideoNotify", base::Value(voipVideoNotifyEnabled())},
      {"visibilityControl", base::Value(visibilityControlMode())},
      {"dailyWindows", std::move(storedWindows)},
  });
}

void QBConfig::save() {
  // The snapshot is taken under the lock; the write happens outside it.
  base::Value dict = settingsDictionary();
  std::string path = configURL();
  std::string error;
  if (waitingForFile_) {
    // What is in memory is not the user's list: writing it would replace it.
    sys::log("[QB] config save refused: not read yet (locked since restart)");
    return;
  }
  if (!moveUnusableAside(path, false, &error) ||
      !sys::writePropertyList(path, dict, sys::PlistFormat::Xml, &error,
                              sys::FileProtection::UntilFirstUnlock)) {
    sys::log("[QB] config save failed: %@", error);
    return;
  }
  writeGate();
}

}  // namespace core
