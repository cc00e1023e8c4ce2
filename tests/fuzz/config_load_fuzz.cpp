// Fuzz target for the settings loader: any bytes in the settings file must
// load into a record that keeps every rule (modes in range, a valid window
// list, non-empty secret names), and save back, without crashing.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "core/config.hpp"
#include "sim/codec/plist_codec.hpp"

namespace {

void check(bool ok, const char* what) {
  if (!ok) {
    std::fprintf(stderr, "settings rule broken after load: %s\n", what);
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::optional<base::Value> root =
      sim::decodePlist(std::string_view(reinterpret_cast<const char*>(data), size));
  core::QBConfig c;
  c.applySettings(root ? *root : base::Value());
  check(static_cast<unsigned long>(c.panelAuthMode()) <= 1, "panelAuthMode");
  check(static_cast<unsigned long>(c.revealAuthMode()) <= 1, "revealAuthMode");
  check(static_cast<unsigned long>(c.secretNotifyMode()) <= 2, "secretNotifyMode");
  check(static_cast<unsigned long>(c.visibilityControlMode()) <= 1, "visibilityControl");
  check(c.backgroundNotifyEnabled() == (c.secretNotifyMode() != 0), "backgroundNotify");
  check(!c.unlocked(), "unlocked");
  check(core::QBConfig::validateDailyWindows(core::windowsValue(c.dailyWindows()), nullptr),
        "dailyWindows");
  for (const std::string& s : c.secretSnapshot()) check(!s.empty(), "secrets");
  base::Value saved = c.settingsDictionary();
  check(saved.asDictionary() && saved.asDictionary()->size() == 17, "17 keys");
  std::string bytes = sim::encodePlist(saved, sys::PlistFormat::Binary);
  check(sim::decodePlist(bytes).has_value(), "round trip");
  return 0;
}
