#include "secrets_seen.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "sim/hostapp/surfaces.hpp"
#include "rt/exception.hpp"

namespace qbsim {
namespace {

using Answer = std::optional<std::vector<std::string>>;

// The host's own exception leaves that screen empty, as it would leave it on
// a phone; anything else is a fault of ours and goes on up.
template <typename List>
auto ask(List list) -> decltype(list()) {
  try {
    return list();
  } catch (const rt::Exception&) {
    return decltype(list())(std::in_place);
  }
}

Answer rowsOf(const std::optional<hostapp::ContactsAnswer>& contacts) {
  return contacts ? Answer(contacts->rows) : std::nullopt;
}

bool holds(const Answer& answer, const std::string& username) {
  return answer && std::find(answer->begin(), answer->end(), username) != answer->end();
}

// What a person types to find a friend: the name the host shows, and the username.
std::vector<std::string> searchTexts(hostapp::HostModel& model, const std::string& username) {
  std::vector<std::string> texts;
  if (const hostapp::Friend* f = model.findFriend(username)) {
    const std::string& shown = !f->remark.empty() ? f->remark : f->nickname;
    if (!shown.empty()) texts.push_back(shown);
  }
  if (std::find(texts.begin(), texts.end(), username) == texts.end()) texts.push_back(username);
  return texts;
}

}  // namespace

std::vector<std::string> secretsShown(hostapp::HostApp& host,
                                      const std::vector<std::string>& secrets) {
  std::vector<std::string> found;
  auto look = [&](const Answer& answer, const std::string& where) {
    for (const std::string& s : secrets)
      if (holds(answer, s)) found.push_back(s + " " + where);
  };
  look(ask([&] { return host.mainListAnswer(); }), "on the main list");
  std::optional<hostapp::ContactsAnswer> contacts = ask(hostapp::contactsAnswer);
  look(rowsOf(contacts), "on the contacts list");
  look(contacts ? Answer(contacts->starred) : std::nullopt, "among the starred contacts");
  for (const std::string& s : secrets)
    for (const std::string& text : searchTexts(host.model, s))
      look(ask([&] { return hostapp::searchAnswer(text); }), "in a search for \"" + text + "\"");
  look(ask(hostapp::momentsAnswer), "in Moments");
  look(ask(hostapp::forwardRowAnswer), "on the forward row");
  return found;
}

}  // namespace qbsim
