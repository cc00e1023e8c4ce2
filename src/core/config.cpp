// The settings file: where it lives, how load migrates and repairs what it
// finds there, and the 17 keys save writes.
#include "core/config.hpp"

#include "core/gate_file.hpp"
#include "core/kept_aside.hpp"
#include "sys/files.hpp"
#include "sys/log.hpp"
#include "sys/notifications.hpp"
#include "sys/process_state.hpp"

namespace core {
namespace {

struct ConfigSlot {
  std::once_flag once;
  std::unique_ptr<QBConfig> config;
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

}  // namespace

QBConfig& QBConfig::shared() {
  ConfigSlot& slot = sys::state<ConfigSlot>();
  std::call_once(slot.once, [&] {
    slot.config = std::make_unique<QBConfig>();
    slot.config->load();
  });
  return *slot.config;
}

std::string QBConfig::configURL() {
  std::string folder = sys::documentsDirectory() + "/Quenby";
  sys::createDirectories(folder);
  // The secret list has no business in a backup another device may restore.
  sys::excludeFromBackup(folder);
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
  std::string path = configURL();
  if (applyFile(path, sys::readPropertyListFile(path))) return;
  // Closed until the first unlock: not damaged, so neither kept aside nor
  // replaced. Until it is read, the gating knows the secrets by their hashes.
  applySettings(base::Value());
  applyGate();
  waitingForFile_ = true;
  sys::log("[QB] config protected until first unlock");
  unlockObserver_ =
      sys::addObserver(sys::kProtectedDataDidBecomeAvailable, [this](const sys::Notification&) {
        readAfterUnlock();
      }).id;
}

bool QBConfig::applyFile(const std::string& path, const sys::PlistFile& file) {
  if (file.status == sys::ReadStatus::NotYetReadable) return false;
  bool usable = file.status == sys::ReadStatus::Read && file.value.isDictionary();
  if (file.status != sys::ReadStatus::Missing && !usable) {
    std::string error;
    if (!moveUnusableAside(path, true, &error))
      sys::log("[QB] config unreadable, left in place: %@", error);
  }
  applySettings(usable ? file.value : base::Value());
  // A file from before the gate file existed gets one now, so a restart
  // before the next save still gates.
  if (usable) writeGate();
  return true;
}

void QBConfig::applyGate() {
  sys::PlistFile file = sys::readPropertyListFile(gateFilePath());
  std::optional<GateRecord> gate =
      file.status == sys::ReadStatus::Read ? gateFromValue(file.value) : std::nullopt;
  if (!gate) return;  // nothing known: every default
  secretNotifyMode_ = gate->notifyMode;
  backgroundNotify_ = gate->notifyMode != 0;
  voipVoice_ = gate->voipVoice;
  voipVideo_ = gate->voipVideo;
  std::lock_guard lock(lock_);
  gateSalt_ = gate->salt;
  gateHashes_ = std::move(gate->hashes);
  gateAnswers_.clear();
  changed();
}

void QBConfig::readAfterUnlock() {
  if (!waitingForFile_) return;
  std::string path = configURL();
  // The transient state is the running process's, not the file's.
  bool wasUnlocked = unlocked_, autoLock = suppressAutoLock_, sessionApply = suppressSessionApply_;
  if (!applyFile(path, sys::readPropertyListFile(path))) return;
  unlocked_ = wasUnlocked;
  suppressAutoLock_ = autoLock;
  suppressSessionApply_ = sessionApply;
  {
    // Together, so a reader on another thread never sees an empty gate as the answer.
    std::lock_guard lock(lock_);
    waitingForFile_ = false;
    gateHashes_.clear();
    gateAnswers_.clear();
  }
  changed();
  sys::removeObserver(sys::ObserverToken{unlockObserver_});
  sys::log("[QB] config read after first unlock");
  requestVisibilitySync();
}

void QBConfig::writeGate() {
  GateRecord record;
  record.notifyMode = secretNotifyMode();
  record.voipVoice = voipVoiceNotifyEnabled();
  record.voipVideo = voipVideoNotifyEnabled();
  std::string path = gateFilePath();
  sys::PlistFile onDisk = sys::readPropertyListFile(path);
  std::optional<GateRecord> old =
      onDisk.status == sys::ReadStatus::Read ? gateFromValue(onDisk.value) : std::nullopt;
  {
    std::lock_guard lock(lock_);
    if (gateSalt_.empty()) gateSalt_ = old ? old->salt : newGateSalt();
    record.salt = gateSalt_;
    for (const std::string& name : secrets_) record.hashes.insert(gateHash(gateSalt_, name));
  }
  if (old && *old == record) return;
  std::string error;
  if (!sys::writePropertyList(path, gateValue(record), sys::PlistFormat::Xml, &error,
                              sys::FileProtection::None))
    sys::log("[QB] gate save failed: %@", error);
}

bool QBConfig::moveUnusableAside(const std::string& path, bool found, std::string* error) {
  std::lock_guard lock(lock_);
  unusableInPlace_ = (unusableInPlace_ || found) && !keepAside(path, error);
  return !unusableInPlace_;
}

void QBConfig::applySettings(const base::Value& file) {
  static const base::Value kEmpty{base::Dictionary{}};
  const base::Value& root = file.isDictionary() ? file : kEmpty;
  std::lock_guard lock(lock_);

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
