// The host's screens besides the main chat list: contacts, contact search,
// Moments and the forward picker. Each screen asks the host's own (possibly
// hooked) methods the way the real app does, and keeps what it got, so what
// these readers return is what a user would see there.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "sim/hostapp/host_app.hpp"
#include "rt/types.hpp"

namespace hostapp {

// --- Helpers shared by the screens.
std::string contactUsername(rt::Id contact);
// The name a screen shows: the contact's display name, else its username.
std::string contactDisplayName(rt::Id contact);
// The contacts list's section of a display name: "A"-"Z" by its first
// Latin letter, "#" for anything else.
std::string sectionKeyOf(const std::string& displayName);
// Sorts contacts as the contacts list orders them: by section ("A"-"Z",
// then "#"), then by display name (localized, numeric-aware).
void sortInContactsOrder(std::vector<rt::Id>& contacts);
// Whether a friend matches a search text: display name, nickname, remark or
// username contains it, ignoring case.
bool matchesSearch(const Friend& f, rt::Id contact, const std::string& text);

// --- Opening screens (each on the selected tab, on top of its first screen).
// Search, Moments and the forward picker are built anew each time.
void openSearch(HostApp& app, const std::string& text);
void openMoments(HostApp& app);
void openForward(HostApp& app);

// --- What each screen shows, by username, top to bottom.
std::vector<std::string> contactsShown(HostApp& app);
std::vector<std::string> contactsStarred(HostApp& app);
long contactsFooterCount(HostApp& app);  // -1 before the screen loaded
std::vector<std::string> searchShown();
std::vector<std::string> momentsShown();
std::vector<std::string> forwardRowShown();
std::vector<std::string> forwardCandidatesShown();
// What each screen's sources answer now, asked the way the screen asks them,
// without building, reloading or showing any screen: what the screen would
// show were it opened now, every row. None in a build without that screen.
struct ContactsAnswer {
  std::vector<std::string> rows, starred;
};
std::optional<ContactsAnswer> contactsAnswer();
std::optional<std::vector<std::string>> searchAnswer(const std::string& text);
std::optional<std::vector<std::string>> momentsAnswer();
std::optional<std::vector<std::string>> forwardRowAnswer();
// Whether the screen was opened in this process.
bool searchOpened();
// Whether the contacts tab has been shown (its view loaded) in this process.
bool contactsOpened(HostApp& app);
bool momentsOpened();
bool forwardOpened();

// The host classes of those screens.
inline constexpr const char* kSearchScreenClass = "FTSSearchViewController";
inline constexpr const char* kMomentsScreenClass = "WCTimeLineViewController";
inline constexpr const char* kForwardScreenClass = "SessionSelectController";

}  // namespace hostapp
