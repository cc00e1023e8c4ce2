// What the system keeps about the app outside it, which anyone holding the
// phone can read without opening the app: send (the host donates the
// message), show and expect for the lock screen (Notification Center), the
// share sheet's suggestions and a system search. Read from the device's
// records; a suggestion or a search result is named by the chat it opens,
// as the host reads back the identifiers it gave.
#include <algorithm>

#include "commands.hpp"

namespace qbsim {
namespace {

std::string joined(const std::vector<std::string>& names) {
  if (names.empty()) return "(nothing)";
  std::string out;
  for (const std::string& n : names) out += (out.empty() ? "" : " ") + n;
  return out;
}

std::vector<std::string> lockscreenSenders(Session& s) {
  std::vector<std::string> from;
  for (const sim::DeliveredNotification& n : s.device().records().delivered()) from.push_back(n.from);
  return from;
}

std::vector<std::string> suggested(Session& s) {
  std::vector<std::string> chats;
  for (const std::string& id : s.device().records().suggestions())
    chats.push_back(s.host().chatForIdentifier(id));
  return chats;
}

std::vector<std::string> found(Session& s, const std::string& text) {
  std::vector<std::string> chats;
  for (const sim::SearchItem& i : s.device().records().search(text))
    chats.push_back(s.host().chatForIdentifier(i.uniqueIdentifier));
  return chats;
}

std::vector<std::string> sorted(std::vector<std::string> v) {
  std::sort(v.begin(), v.end());
  return v;
}

}  // namespace

void addOutsideCommands(CommandTable& t) {
  t["send"] = {"send USER [TEXT]", [](Session& s, const Command& c) {
                 requireWords(c, 2, 3, "send USER [TEXT]");
                 sim::Process& p = s.requireProcess("send");
                 std::string text = c.words.size() == 3 ? c.words[2] : "[消息]";
                 p.runGuarded([&] { s.host().sendMessage(c.words[1], text); });
               }};
  t["show lockscreen"] = {"show lockscreen", [](Session& s, const Command& c) {
                            requireWords(c, 2, 2, "show lockscreen");
                            auto all = s.device().records().delivered();
                            if (all.empty()) s.out() << "(no notifications)\n";
                            for (const auto& n : all)
                              s.out() << n.title << ": " << n.body << "\n";
                          }};
  t["show suggestions"] = {"show suggestions", [](Session& s, const Command& c) {
                             requireWords(c, 2, 2, "show suggestions");
                             s.out() << joined(suggested(s)) << "\n";
                           }};
  t["show spotlight"] = {"show spotlight TEXT", [](Session& s, const Command& c) {
                           requireWords(c, 3, 3, "show spotlight TEXT");
                           auto items = s.device().records().search(c.words[2]);
                           if (items.empty()) s.out() << "(no results)\n";
                           for (const auto& i : items) s.out() << i.title << "\n";
                         }};
  t["expect lockscreen"] = {"expect lockscreen [USER...]", [](Session& s, const Command& c) {
                              std::vector<std::string> want(c.words.begin() + 2, c.words.end());
                              std::vector<std::string> got = lockscreenSenders(s);
                              if (got != want) throw ExpectFailure{joined(got)};
                            }};
  t["expect suggestions"] = {"expect suggestions [USER...]", [](Session& s, const Command& c) {
                               std::vector<std::string> want(c.words.begin() + 2, c.words.end());
                               std::vector<std::string> got = suggested(s);
                               if (got != want) throw ExpectFailure{joined(got)};
                             }};
  t["expect spotlight"] = {"expect spotlight TEXT [USER...]", [](Session& s, const Command& c) {
                             requireWords(c, 3, 99, "expect spotlight TEXT [USER...]");
                             std::vector<std::string> want(c.words.begin() + 3, c.words.end());
                             std::vector<std::string> got = found(s, c.words[2]);
                             if (sorted(got) != sorted(want)) throw ExpectFailure{joined(got)};
                           }};
}

}  // namespace qbsim
