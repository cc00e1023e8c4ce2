// The simulated host app: its data (the logged-in user, friends, chat rooms),
// the build it runs as (any class or method can be missing, any method can be
// made to raise), and the classes, selectors and keys the system reaches.
// It outlives processes: a `launch` defines its classes in the new process.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <unordered_map>
#include <vector>

#include "rt/types.hpp"
#include "sim/process.hpp"

namespace hostapp {

struct Friend {
  std::string username;
  std::string nickname;
  std::string remark;
  std::string alias;
  bool favourite = false;
  bool headImage = false;     // the head-image service has a picture
  bool oldHeadImage = false;  // only the old on-disk path has one
  bool cacheComplete = true;  // false: the cached record lacks names until read from the database
};

struct Room {
  std::string username;  // ends in "@chatroom"
  std::string title;
};

struct Moment {
  std::string username;  // the author
  std::string text;
  long serial = 0;  // stable identity of the item
};

struct HostModel {
  std::string me = "wxid_me";
  std::vector<Friend> friends;
  std::vector<Room> rooms;
  // The chats of the main list, top first, by username.
  std::vector<std::string> sessions;
  // The Moments timeline, newest first.
  std::vector<Moment> moments;
  // The host's own record of recent chats, most recent first, at most 10:
  // every chat, whatever the main list shows.
  std::vector<std::string> recentChats;
  // The last message id given: unique across runs, as the host's server ids are.
  long lastMessageId = 0;
  // The text of each chat's latest message, sent or received: its row's subtitle.
  std::map<std::string, std::string> lastMessages;
  // Moves (or adds) the chat with `username` to the top.
  void bringSessionToTop(const std::string& username);
  void noteRecentChat(const std::string& username);
  void addMoment(const std::string& username, const std::string& text);

  Friend* findFriend(const std::string& username);
  const Room* findRoom(const std::string& username) const;

 private:
  std::unordered_map<std::string, std::size_t> friendIndex_;
  std::string lastIndexed_;
};

// Which build of the host runs: classes or methods it lacks, methods that raise.
struct HostBuild {
  std::set<std::string> lackingClasses;
  std::set<std::pair<std::string, std::string>>
      lackingMethods;  // (class, selector); "+sel" for class methods
  std::set<std::pair<std::string, std::string>> raisingMethods;
  // Named differences of this build (`host variant NAME`).
  std::set<std::string> variants;

  bool lacksClass(const std::string& cls) const { return lackingClasses.count(cls) != 0; }
  bool lacksMethod(const std::string& cls, const std::string& sel) const;
  // Asked on every call of some host methods: compared in place, the set
  // being a handful at most, so that no key is built for the look-up.
  bool hasVariant(std::string_view name) const {
    for (const std::string& v : variants)
      if (v == name) return true;
    return false;
  }
};

// Every build variant the host knows, by name.
const std::set<std::string>& knownHostVariants();

// `f(Int{})` with the integer type this build gives the integer arguments of
// its message and call paths: long (q), or unsigned long long (Q) for
// `ints-unsigned`, or unsigned (I) for `ints-32`.
template <typename F>
void withHostInteger(const HostBuild& build, F&& f) {
  if (build.hasVariant("ints-32"))
    f(unsigned{});
  else if (build.hasVariant("ints-unsigned"))
    f((unsigned long long){});
  else
    f(long{});
}

// The host's own way to its services: straight to the registry, not through
// getService:, so a fault injected there hits only the library's calls.
// `cls` a literal: its address names it.
rt::Id hostService(const char* cls);
// The contact manager's record of a username (a fresh record when the build
// has no manager).
rt::Id hostContact(const std::string& username);

// The host's tabs, in the order of its tab bar: 微信, 通讯录, 发现, 我.
inline constexpr long kChatsTab = 0, kContactsTab = 1, kDiscoverTab = 2, kMeTab = 3;

class HostApp {
 public:
  HostModel model;
  HostBuild build;

  // The launch hooks that put this host into a process (the library's entry
  // is added by whoever launches).
  sim::LaunchHooks launchHooks();

  // Defines the host's classes in the current process.
  void defineClasses();
  // Makes a method raise from now on (in the running process too).
  void makeRaising(const std::string& cls, const std::string& sel);
  // The host's own implementation of a method, as its binary defined it
  // (hooks may have moved it since). Null when the build lacks it.
  rt::IMP originalImplementation(const std::string& cls, const std::string& sel) const;
  // The classes this build defined in its last process.
  std::set<std::string> definedClassNames() const;
  // Every method this build defined, as (class, selector), "+selector" for a
  // class method.
  std::vector<std::pair<std::string, std::string>> definedMethods() const {
    std::vector<std::pair<std::string, std::string>> out;
    for (const auto& [key, imp] : originals_) out.push_back(key);
    return out;
  }

  // A chat moved to the top while the app runs: the host rebuilds its
  // session list and reloads the main list, as it does on a new message.
  void sessionsChanged();
  // The main-list screen's controller, once built.
  rt::Id mainFrame() const { return mainFrame_; }
  rt::Id contactsScreen() const { return contactsScreen_; }
  rt::Id tabs() const { return tabs_; }
  // What the main list's screen shows, top to bottom: the chats its table got
  // at its last reload (the rows that fit the screen).
  std::vector<std::string> mainListShown() const;
  // The user scrolls the main list to its end and back, so its table asks
  // for every row it has not shown since its last reload. False when the
  // main list has not been built.
  bool scrollMainList();
  // What the main list's data source answers now for every row, asked as
  // UIKit asks it, without reloading the table; none in a build without the
  // main list's controller.
  std::optional<std::vector<std::string>> mainListAnswer() const;
  // The app switcher's picture taken when the app last entered the
  // background: the screen on top and the rows of its list.
  struct Snapshot {
    bool taken = false;
    std::string screen;
    std::vector<std::string> mainRows;  // the main chat list, when it was on top
    std::vector<std::string> rows;      // the rows of the list on top, if any
  };
  const Snapshot& lastSnapshot() const { return snapshot_; }
  void takeSnapshot();
  // Pushes a chat with `username` on the chats tab, as tapping its row does.
  void openChat(const std::string& username);
  // Back to the first screen of the tab shown.
  void popToRoot();
  // Shows one of the tabs (kChatsTab …) as UIKit does.
  void selectTab(long index);

  // An incoming message (its chat already moved to the top) through the
  // host's notification paths: in-app while active, a local notification in
  // the background. `missedCall` makes it the host's missed-call message (a
  // call-message type; `video` says of which call).
  void deliverMessage(const std::string& from, const std::string& text, bool missedCall = false,
                      bool video = false);
  // What the host's server sends for a message while the app is suspended or
  // not running, for the system to present by itself: the chat's display
  // name, the text, the chat as thread, the user info of the host's own
  // notifications and the default sound.
  sim::SystemNotification remoteNotification(const std::string& from, const std::string& text,
                                             const std::string& bundleIdentifier);
  // An incoming call through the host's call and CallKit paths; unanswered,
  // it ends after 30 s and leaves a missed-call message.
  void deliverCall(const std::string& from, bool video);
  // The chat whose screen is on top, or "".
  std::string openChatUsername() const;

  // What the host leaves with the system (outside.cpp). The user sends a
  // message in the chat with `chat`: it moves to the top and is donated.
  void sendMessage(const std::string& chat, const std::string& text);
  // Donates the interaction of a message sent or received in `chat`.
  void donateMessage(const std::string& chat, const std::string& text, bool outgoing);
  // Indexes a searchable item for each chat not yet indexed in this process.
  void indexNewChats();
  // The chat a suggestion or a search result opens: the host reading back
  // the identifiers it gave.
  std::string chatForIdentifier(const std::string& identifier);
  // How the host names a chat: remark, nickname, group title, else username.
  std::string displayName(const std::string& username);

  // The host app of the current process.
  static HostApp& current();

  // Used by the class definitions: record a defined method.
  void noteMethod(const std::string& cls, const std::string& sel, rt::IMP imp) {
    originals_[{cls, sel}] = imp;
  }
  // A class this build defines, with or without methods of its own.
  void noteClass(const std::string& cls) { classes_.insert(cls); }

 private:
  void buildFirstScreen();
  rt::Id mainFrame_ = nullptr, contactsScreen_ = nullptr, tabs_ = nullptr;
  std::map<std::pair<std::string, std::string>, rt::IMP> originals_;
  std::set<std::string> classes_;
  Snapshot snapshot_;
  std::set<std::string> indexedChats_;  // in this process
};

}  // namespace hostapp
