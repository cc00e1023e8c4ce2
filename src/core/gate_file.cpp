#include "core/gate_file.hpp"

#include <algorithm>

#include "base/sha256.hpp"
#include "core/config.hpp"
#include "sys/files.hpp"
#include "sys/random.hpp"

namespace core {
namespace {

bool isHash(const std::string& s) {
  if (s.size() != 64) return false;
  for (char c : s)
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return false;
  return true;
}

// As the window rules read a key: missing or not a number is 0.
long field(const base::Value& window, const char* key) {
  const base::Value* v = window.find(key);
  return v ? v->integerValue().value_or(0) : 0;
}

}  // namespace

std::string gateFilePath() { return sys::documentsDirectory() + "/Quenby/" + kGateFileName; }

std::string gateFilePathIn(std::string_view container) {
  return std::string(container) + "/Documents/Quenby/" + kGateFileName;
}

std::string gateHash(std::string_view salt, std::string_view username) {
  std::string input;
  input.reserve(salt.size() + 1 + username.size());
  input.append(salt).append("\n").append(username);
  return base::sha256Hex(input);
}

std::string newGateSalt() { return base::hexString(sys::randomBytes(16)); }

base::Value gateValue(const GateRecord& record) {
  base::Array hashes;
  for (const std::string& h : record.hashes) hashes.emplace_back(h);
  // Sorted, so the file does not tell the order names were added in.
  std::sort(hashes.begin(), hashes.end(), [](const base::Value& a, const base::Value& b) {
    return *a.asString() < *b.asString();
  });
  base::Dictionary d{
      {"salt", base::Value(record.salt)},
      {"secretHashes", base::Value(std::move(hashes))},
      {"secretNotifyMode", base::Value(record.notifyMode)},
      {"voipVoiceNotify", base::Value(record.voipVoice)},
      {"voipVideoNotify", base::Value(record.voipVideo)},
      {"visibilityControl", base::Value(record.visibilityControl)},
  };
  // No list is ever empty: a record without windows has no key for them.
  if (!record.windows.empty()) d.emplace_back("dailyWindows", windowsValue(record.windows));
  return base::Value(std::move(d));
}

std::optional<GateRecord> gateFromValue(const base::Value& root) {
  const base::Value* salt = root.find("salt");
  const base::Value* hashes = root.find("secretHashes");
  const base::Value* mode = root.find("secretNotifyMode");
  const base::Value* voice = root.find("voipVoiceNotify");
  const base::Value* video = root.find("voipVideoNotify");
  if (!salt || !salt->isString() || salt->asString()->empty() || !hashes || !hashes->isArray() ||
      !mode || !voice || !video)
    return std::nullopt;
  GateRecord r;
  r.salt = *salt->asString();
  for (const base::Value& h : *hashes->asArray()) {
    if (!h.isString() || !isHash(*h.asString())) return std::nullopt;
    r.hashes.insert(*h.asString());
  }
  std::optional<long> m = mode->integerValue();
  if (!m || static_cast<unsigned long>(*m) > 2) return std::nullopt;
  r.notifyMode = *m;
  r.voipVoice = voice->boolValue().value_or(false);
  r.voipVideo = video->boolValue().value_or(false);
  // Absent in a file an older app wrote: manual mode, no windows.
  if (const base::Value* control = root.find("visibilityControl")) {
    std::optional<long> c = control->integerValue();
    if (!c || static_cast<unsigned long>(*c) > 1) return std::nullopt;
    r.visibilityControl = *c;
  }
  if (const base::Value* windows = root.find("dailyWindows")) {
    if (!QBConfig::validateDailyWindows(*windows, nullptr)) return std::nullopt;
    for (const base::Value& w : *windows->asArray())
      r.windows.push_back(
          QBConfig::QBWindow(field(w, "start"), field(w, "end"), QBConfig::modeFromWindow(w)));
    std::sort(r.windows.begin(), r.windows.end(),
              [](const DailyWindow& a, const DailyWindow& b) { return a.start < b.start; });
  }
  return r;
}

}  // namespace core
