// The settings file as the checker judges it: untouched until the first
// save, then holding what was last saved, and a damaged one kept aside whole.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <tuple>

#include "sim/codec/plist_codec.hpp"
#include "swarm_checker.hpp"

namespace qbsim::swarm {
namespace {

// "config-2025-11-25-031700.plist": the date and time, digits where digits go.
bool datedName(const std::string& name) {
  const std::string shape = "config-0000-00-00-000000.plist";
  if (name.size() != shape.size()) return false;
  for (std::size_t i = 0; i < shape.size(); ++i)
    if (shape[i] == '0' ? !std::isdigit((unsigned char)name[i]) : name[i] != shape[i]) return false;
  return true;
}

std::string csv(const std::set<std::string>& s) {
  std::string out;
  for (const auto& u : s) out += (out.empty() ? "" : " ") + u;
  return "[" + out + "]";
}

constexpr const char* kNone = "(none)";

std::string shown(std::optional<long> x) { return x ? std::to_string(*x) : kNone; }
std::string shown(std::optional<bool> x) { return x ? (*x ? "true" : "false") : kNone; }
std::string shown(bool x) { return x ? "true" : "false"; }

// Windows as "HH:MM-HH:MM show|hide" in the order of their starts, whatever
// order they were kept in: the file's order is not the user's data.
std::string spans(const std::vector<Window>& windows) {
  std::vector<std::tuple<long, long, bool>> sorted;
  for (const Window& w : windows) sorted.emplace_back(w.start, w.end, w.hide);
  std::sort(sorted.begin(), sorted.end());
  std::string out;
  char buf[96];
  for (const auto& [start, end, hide] : sorted) {
    std::snprintf(buf, sizeof buf, "%s%02ld:%02ld-%02ld:%02ld %s", out.empty() ? "" : " ",
                  start / 60, start % 60, end / 60, end % 60, hide ? "hide" : "show");
    out += buf;
  }
  return "[" + out + "]";
}

}  // namespace

// What cannot be read is the user's data all the same: the first launch moves
// it aside whole, under a dated name beside it, and nothing else is ever left
// there (no temporary file).
std::optional<Breach> Checker::judgeKeptAside(const Observation& o) const {
  bool kept = damaged_ && launchedOnce_;
  if (o.besideFile.size() != (kept ? 1u : 0u))
    return Breach{5, std::to_string(o.besideFile.size()) + " items beside the settings file" +
                         (o.besideFile.empty() ? "" : ", first " + o.besideFile.begin()->first)};
  if (!kept) return std::nullopt;
  const auto& [name, bytes] = *o.besideFile.begin();
  if (!datedName(name)) return Breach{5, "the damaged settings file is kept aside as " + name};
  if (bytes != *initialFile_)
    return Breach{5, "the damaged settings file changed aside: " + std::to_string(bytes.size()) +
                         " bytes kept, " + std::to_string(initialFile_->size()) + " were there"};
  return std::nullopt;
}

std::optional<Breach> Checker::judgeFile(const Observation& o) {
  if (auto b = judgeKeptAside(o)) return b;
  if (!saved_) {
    if (damaged_ && launchedOnce_) {
      if (o.file) return Breach{5, "the damaged settings file is still in place after launch"};
    } else if (o.file != initialFile_) {
      return Breach{5, "the settings file changed before anything was saved"};
    }
    return std::nullopt;
  }
  if (!o.file) return Breach{5, "the settings file is gone after a save"};
  std::optional<base::Value> v = sim::decodePlist(*o.file);
  if (!v || !v->isDictionary()) return Breach{5, "the settings file does not parse after a save"};
  // Both values, as the file holds them and as last saved.
  auto mismatch = [](const std::string& key, const std::string& held, const std::string& want) {
    return Breach{5, "the settings file holds " + key + " " + held + ", last saved " + want};
  };
  auto integer = [&](const char* key) {
    const base::Value* x = v->find(key);
    return x ? x->integerValue() : std::nullopt;
  };
  auto boolean = [&](const std::string& key) {
    const base::Value* x = v->find(key);
    return x ? x->boolValue() : std::nullopt;
  };
  std::set<std::string> secrets;
  if (const base::Value* s = v->find("secrets"); s && s->isArray())
    for (const base::Value& e : *s->asArray())
      if (const std::string* n = e.asString()) secrets.insert(*n);
  if (secrets != settings_.secrets)
    return mismatch("secrets", csv(secrets), csv(settings_.secrets));
  const base::Value* pw = v->find("password");
  const std::string* held = pw ? pw->asString() : nullptr;
  if (!held || *held != settings_.password)
    return mismatch("password", held ? *held : kNone, settings_.password);
  if (auto x = integer("visibilityControl"); x != (settings_.manual ? 0 : 1))
    return mismatch("visibilityControl", shown(x), settings_.manual ? "0" : "1");
  if (auto x = integer("secretNotifyMode"); x != settings_.notifyMode)
    return mismatch("secretNotifyMode", shown(x), std::to_string(settings_.notifyMode));
  if (auto x = boolean("voipVoiceNotify"); x != settings_.voice)
    return mismatch("voipVoiceNotify", shown(x), shown(settings_.voice));
  if (auto x = boolean("voipVideoNotify"); x != settings_.video)
    return mismatch("voipVideoNotify", shown(x), shown(settings_.video));
  for (const auto& [key, on] : settings_.switches)
    if (auto x = boolean(key); x != on) return mismatch(key, shown(x), shown(on));
  for (const auto& [key, mode] : settings_.modes)
    if (auto x = integer(key.c_str()); x != mode)
      return mismatch(key, shown(x), std::to_string(mode));
  if (settings_.windowsKnown) {
    std::vector<Window> onDisk;
    if (const base::Value* list = v->find("dailyWindows"); list && list->isArray())
      for (const base::Value& e : *list->asArray()) {
        auto field = [&](const char* key) {
          const base::Value* x = e.find(key);
          return x ? x->integerValue().value_or(-1) : -1;
        };
        onDisk.push_back(Window{field("start"), field("end"), field("mode") == 1});
      }
    if (spans(onDisk) != spans(settings_.windows))
      return mismatch("dailyWindows", spans(onDisk), spans(settings_.windows));
  }
  return std::nullopt;
}

}  // namespace qbsim::swarm
