#include "panel/panel_settings.hpp"

#include "base/utf8.hpp"
#include "core/config.hpp"
#include "notify/notify_hooks.hpp"
#include "panel/panel_controller.hpp"
#include "panel/panel_rows.hpp"
#include "triggers/schedule.hpp"

namespace panel {
namespace {

using core::QBConfig;

struct SwitchKey {
  std::string_view key;
  void (QBConfig::*set)(bool);
  bool (QBConfig::*get)() const;
  bool callsHost;  // the host's call auto-ignore follows it
};

// The panel's five switches, then keys the file keeps that no row shows.
constexpr SwitchKey kSwitchKeys[] = {
    {"shakeShow", &QBConfig::setShakeShowEnabled, &QBConfig::shakeShowEnabled, false},
    {"longPressUnlock", &QBConfig::setLongPressUnlockEnabled, &QBConfig::longPressUnlockEnabled,
     false},
    {"shakeHide", &QBConfig::setShakeHideEnabled, &QBConfig::shakeHideEnabled, false},
    {"voipVoiceNotify", &QBConfig::setVoipVoiceNotifyEnabled, &QBConfig::voipVoiceNotifyEnabled,
     true},
    {"voipVideoNotify", &QBConfig::setVoipVideoNotifyEnabled, &QBConfig::voipVideoNotifyEnabled,
     true},
    {"shakeToggle", &QBConfig::setShakeToggleEnabled, &QBConfig::shakeToggleEnabled, false},
    {"showNeedsAuth", &QBConfig::setShowNeedsAuth, &QBConfig::showNeedsAuth, false},
    {"passwordFallback", &QBConfig::setPasswordFallbackEnabled, &QBConfig::passwordFallbackEnabled,
     false},
    {"backgroundNotify", &QBConfig::setBackgroundNotifyEnabled, &QBConfig::backgroundNotifyEnabled,
     false},
};

const SwitchKey* switchKey(std::string_view key) {
  for (const SwitchKey& s : kSwitchKeys)
    if (s.key == key) return &s;
  return nullptr;
}

void applySchedule(Scope scope) {
  if (scope == Scope::App) triggers::QBSchedule::applyNow();
}

bool choose(std::string_view key, long value, Scope scope) {
  QBConfig& c = QBConfig::shared();
  if (value < 0 || value > maxChoice(key)) return false;
  if (key == "visibilityControl") {
    c.setVisibilityControlMode(value);
    c.save();
    applySchedule(scope);
    return true;
  }
  if (key == "secretNotifyMode") {
    c.setSecretNotifyMode(value);
    // Notifying while hidden needs the background flag; silence clears it.
    c.setBackgroundNotifyEnabled(value != 0);
  } else if (key == "panelAuthMode") {
    c.setPanelAuthMode(value);
  } else if (key == "revealAuthMode") {
    c.setRevealAuthMode(value);
  } else {
    return false;
  }
  c.save();
  return true;
}

}  // namespace

SettingKind settingKind(std::string_view key) {
  if (switchKey(key)) return SettingKind::Switch;
  if (maxChoice(key) >= 0) return SettingKind::Choice;
  if (key == "password") return SettingKind::Text;
  if (key == "dailyWindows") return SettingKind::Windows;
  return SettingKind::Unknown;
}

bool switchIsOn(std::string_view key) {
  const SwitchKey* s = switchKey(key);
  return s && (QBConfig::shared().*s->get)();
}

long currentChoice(std::string_view key) {
  const QBConfig& c = QBConfig::shared();
  if (key == "visibilityControl") return c.visibilityControlMode();
  if (key == "secretNotifyMode") return c.secretNotifyMode();
  if (key == "panelAuthMode") return c.panelAuthMode();
  if (key == "revealAuthMode") return c.revealAuthMode();
  return -1;
}

bool changeSetting(std::string_view key, const base::Value& value, Scope scope,
                   std::string* message) {
  QBConfig& c = QBConfig::shared();
  switch (settingKind(key)) {
    case SettingKind::Switch: {
      const bool* on = value.asBool();
      if (!on) return false;
      const SwitchKey* s = switchKey(key);
      (c.*s->set)(*on);
      c.save();
      if (s->callsHost && scope == Scope::App) notify::QBNotifyHooks::syncVoipAutoIgnore();
      return true;
    }
    case SettingKind::Choice: {
      const std::int64_t* n = value.asInteger();
      return n && choose(key, long(*n), scope);
    }
    case SettingKind::Text: {
      const std::string* text = value.asString();
      // NSString's length, in UTF-16 units.
      if (!text || base::utf16Length(*text) < kMinPasswordLength) return false;
      c.setPassword(*text);
      c.save();
      return true;
    }
    case SettingKind::Windows:
      if (!c.setDailyWindows(value, message)) return false;
      applySchedule(scope);
      return true;
    case SettingKind::Unknown:
      break;
  }
  return false;
}

}  // namespace panel
