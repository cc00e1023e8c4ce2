// show screen: whatever is on top, named as `expect screen` names it, then
// what that screen shows (a list screen prints as its own `show` does).
#include <cstdio>

#include "commands.hpp"
#include "rt/foundation.hpp"
#include "rt/kvc.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/leaks.hpp"
#include "sim/frameworks/uikit/tables.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace qbsim {
namespace {

void showAlert(Session& s, rt::Id alert) {
  const sim::AlertState& a = *sim::alertState(alert);
  s.out() << "title: " << a.title << "\n";
  if (!a.message.empty()) s.out() << "message: " << a.message << "\n";
  for (std::size_t i = 0; i < a.textFields.size(); ++i) {
    std::string text = rt::asString(rt::send<rt::Id>(a.textFields[i], "text")).value_or("");
    bool secure = i < a.fieldSpecs.size() && a.fieldSpecs[i].secure;
    std::string placeholder = i < a.fieldSpecs.size() ? a.fieldSpecs[i].placeholder : "";
    s.out() << "field: "
            << (text.empty() ? "(" + placeholder + ")"
                : secure     ? std::string(text.size(), '*')
                             : text)
            << "\n";
  }
  if (rt::Id wheel = sim::alertTimePicker(alert)) {
    const sim::DatePickerState* t = sim::findExtra<sim::DatePickerState>(wheel);
    char hhmm[8];
    std::snprintf(hhmm, sizeof hhmm, "%02ld:%02ld", t ? t->hour : 0L, t ? t->minute : 0L);
    s.out() << "time wheel: " << hhmm << "\n";
  }
  std::string buttons;
  for (const sim::AlertAction& action : a.actions)
    buttons += (buttons.empty() ? "" : "  ") + ("[" + action.title + "]");
  if (!buttons.empty()) s.out() << "buttons: " << buttons << "\n";
}

}  // namespace

void addScreenCommands(CommandTable& t) {
  t["show leaks"] = {"show leaks", [](Session& s, const Command& c) {
                       requireWords(c, 2, 2, "show leaks");
                       s.requireProcess("show leaks");
                       std::vector<std::string> leaks = sim::describeLeaks();
                       if (leaks.empty()) s.out() << "no leaks\n";
                       for (const std::string& line : leaks) s.out() << line << "\n";
                     }};
  t["expect no-leaks"] = {
      "expect no-leaks", [](Session& s, const Command& c) {
        requireWords(c, 2, 2, "expect no-leaks");
        s.requireProcess("expect no-leaks");
        std::vector<std::string> leaks = sim::describeLeaks();
        if (!leaks.empty())
          throw ExpectFailure{std::to_string(leaks.size()) + " leaked, first " + leaks.front()};
      }};
  t["show screen"] = {"show screen", [](Session& s, const Command& c) {
                        requireWords(c, 2, 2, "show screen");
                        std::string name = topScreenName(s);
                        s.out() << "screen " << name << "\n";
                        if (name == "biometric") {
                          s.out() << "reason: " << s.process()->platform().biometricReason << "\n";
                        } else if (name == "alert") {
                          showAlert(s, sim::topController());
                        } else if (name == "chat") {
                          s.out() << "chat with " << s.host().openChatUsername() << "\n";
                        } else if (auto it = commandTable().find("show " + name);
                                   it != commandTable().end() && name != "screen") {
                          Command inner{{"show", name}, "show " + name};
                          it->second.run(s, inner);
                        }
                      }};
}

}  // namespace qbsim
