// Messages and calls as the user meets them: call, show notices, and the
// expectations on banners, sounds, vibrations and ringing call screens.
// Everything is read from the device's record of what reached the user.
#include <cmath>
#include <cstdio>

#include "commands.hpp"

namespace qbsim {
namespace {

std::string describe(const sim::Announcement& a) {
  std::vector<std::string> parts;
  if (!a.banner.empty()) parts.push_back(a.banner + " banner");
  if (a.sound) parts.push_back("sound");
  if (a.vibrations == 1) parts.push_back("1 vibration");
  if (a.vibrations > 1) parts.push_back(std::to_string(a.vibrations) + " vibrations");
  if (a.ringing) parts.push_back("ringing");
  if (a.ended) parts.push_back("call ended");
  std::string out;
  for (const std::string& p : parts) out += (out.empty() ? "" : ", ") + p;
  return out.empty() ? "nothing" : out;
}

std::string clockOf(double secondOfDay) {
  char buf[16];
  int s = int(std::floor(secondOfDay));
  std::snprintf(buf, sizeof buf, "%02d:%02d:%02d", s / 3600, (s / 60) % 60, s % 60);
  return buf;
}

// expect WHAT FROM / expect no-WHAT FROM, on the latest message or call.
void addExpectation(CommandTable& t, const std::string& what,
                    bool (*holds)(const sim::Announcement&), bool callsOnly = false) {
  for (bool negated : {false, true}) {
    std::string name = (negated ? "no-" : "") + what;
    std::string usage = "expect " + name + " FROM";
    t["expect " + name] = {
        usage, [=](Session& s, const Command& c) {
          requireWords(c, 3, 3, usage);
          const std::string& from = c.words[2];
          sim::Notices& n = s.device().notices();
          auto a = callsOnly ? n.latestCall(from) : n.latest(from);
          if (!a)
            throw ExpectFailure{std::string(callsOnly ? "no call" : "no message or call") +
                                " from " + from};
          if (holds(*a) == negated) throw ExpectFailure{a->kind + ": " + describe(*a)};
        }};
  }
}

}  // namespace

void addNotifyCommands(CommandTable& t) {
  t["call"] = {
      "call voice|video FROM", [](Session& s, const Command& c) {
        requireWords(c, 3, 3, "call voice|video FROM");
        if (c.words[1] != "voice" && c.words[1] != "video")
          throw ScriptError{"usage: call voice|video FROM"};
        // The call's VoIP push wakes the app, or launches it in the background.
        s.voipPush();
        s.process()->runGuarded([&] { s.host().deliverCall(c.words[2], c.words[1] == "video"); });
      }};
  t["show notices"] = {"show notices", [](Session& s, const Command& c) {
                         requireWords(c, 2, 2, "show notices");
                         auto all = s.device().notices().all();
                         if (all.empty()) s.out() << "(no messages or calls)\n";
                         for (const auto& a : all)
                           s.out() << clockOf(a.secondOfDay) << " " << a.kind << " from " << a.from
                                   << (a.text.empty() ? "" : " \"" + a.text + "\"") << ": "
                                   << describe(a) << "\n";
                       }};
  addExpectation(t, "banner", [](const sim::Announcement& a) { return !a.banner.empty(); });
  addExpectation(t, "sound", [](const sim::Announcement& a) { return a.sound; });
  addExpectation(t, "vibration", [](const sim::Announcement& a) { return a.vibrations > 0; });
  addExpectation(
      t, "ringing", [](const sim::Announcement& a) { return a.ringing; }, true);
}

}  // namespace qbsim
