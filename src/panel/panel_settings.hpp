// One setting changed the way its panel row changes it: the setter, the save,
// and what the row does besides (the notify rows' background flag, the
// schedule re-applied, the host's call auto-ignore re-synced). The panel's
// rows and quenby-sim's `setting` both come through here.
#pragma once

#include <string>
#include <string_view>

#include "base/value.hpp"

namespace panel {

// App: the app is running and follows the change. FileOnly: a short-lived
// process edits the file before launch, with no app to follow it.
enum class Scope { App, FileOnly };

enum class SettingKind {
  Unknown,
  Switch,   // a bool
  Choice,   // an integer from 0 to maxChoice(key)
  Text,     // the password
  Windows,  // the daily windows, as the file keeps them
};

SettingKind settingKind(std::string_view key);
// What a Switch key is set to, false for any other key.
bool switchIsOn(std::string_view key);
// What a Choice key holds, -1 for any other key.
long currentChoice(std::string_view key);
// False when the value is refused, with the panel's words in `message` when it
// has any: a password that is too short is dropped without one, as the panel
// drops it.
bool changeSetting(std::string_view key, const base::Value& value, Scope scope,
                   std::string* message = nullptr);

}  // namespace panel
