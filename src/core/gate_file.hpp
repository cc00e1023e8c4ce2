// What the notification and call gating needs between a restart and the
// first unlock, when the settings file cannot be read: salted SHA-256 hashes
// of the secret usernames, the notify mode, the two call switches, and the
// visibility mode with its daily windows, which SpringBoard reads to tell
// whether the secrets are hidden while the app is not running. It is
// written without data protection beside the settings, so it holds no name:
// a hash answers "is this caller secret" for a name already at hand, and the
// per-install salt keeps a list of common names from being tried against it
// ahead of time.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/value.hpp"
#include "core/daily_window.hpp"

namespace core {

struct GateRecord {
  std::string salt;  // hexadecimal, chosen once per install
  std::unordered_set<std::string> hashes;
  long notifyMode = 0;
  bool voipVoice = false;
  bool voipVideo = false;
  long visibilityControl = 0;  // 0 manual, 1 schedule
  DailyWindows windows;        // valid and sorted by start; none in an older file
  bool operator==(const GateRecord&) const = default;
};

inline constexpr const char* kGateFileName = "gate.plist";
// The Darwin notification posted after every write of the gate file, so that
// SpringBoard reads it again at once.
inline constexpr const char* kGateChangedNotification = "org.quenby.gate-changed";
// Documents/Quenby/gate.plist.
std::string gateFilePath();
// The same file inside the app container at `container` (seen from outside the app).
std::string gateFilePathIn(std::string_view container);
// SHA-256 of the salt, a newline and the username, in hexadecimal.
std::string gateHash(std::string_view salt, std::string_view username);
// A new salt: 16 random bytes in hexadecimal.
std::string newGateSalt();

base::Value gateValue(const GateRecord& record);
// The record in a file's root; nullopt for anything that is not one (a
// missing salt, a hash that is not 64 hexadecimal digits, a mode out of range,
// windows the settings would refuse). A file from before the visibility keys
// reads as manual mode without windows.
std::optional<GateRecord> gateFromValue(const base::Value& root);

}  // namespace core
