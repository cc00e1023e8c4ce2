#include "sim/hostapp/host_app.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/runtime.hpp"
#include "sim/frameworks/uikit/uikit.hpp"

namespace hostapp {

void defineContextClasses(HostApp& app);
void defineContactClasses(HostApp& app);
void defineMainListClasses(HostApp& app);
void defineSurfaceClasses(HostApp& app);
void defineAboutClasses(HostApp& app);
void defineNotificationClasses(HostApp& app);
void defineCallClasses(HostApp& app);

Friend* HostModel::findFriend(const std::string& username) {
  // An index over the address book, rebuilt when the book has changed shape
  // since (friends are added and removed at its end by the scripts).
  bool stale = friendIndex_.size() != friends.size() ||
               (!friends.empty() && friends.back().username != lastIndexed_);
  if (stale) {
    friendIndex_.clear();
    for (std::size_t i = 0; i < friends.size(); ++i) friendIndex_.emplace(friends[i].username, i);
    lastIndexed_ = friends.empty() ? "" : friends.back().username;
  }
  auto it = friendIndex_.find(username);
  if (it != friendIndex_.end() && friends[it->second].username == username)
    return &friends[it->second];
  for (Friend& f : friends)  // renamed in place: the slow way, as before
    if (f.username == username) return &f;
  return nullptr;
}

const Room* HostModel::findRoom(const std::string& username) const {
  for (const Room& r : rooms)
    if (r.username == username) return &r;
  return nullptr;
}

const std::set<std::string>& knownHostVariants() {
  // store-ignores-canshow: the session store never asks canShowInMainFrame:.
  // list-through-logic: the main list's view controller reads its rows (not
  //   its count) through MainFrameLogicController.
  // session-key-first: sessions carry the username under m_nsUsrName.
  // fts-immutable: contact search's full-text source answers an immutable
  //   dictionary.
  // push-3arg, ilink-calls, message-keys-alt, callkit-end-*: the message and
  //   call paths' alternatives (see notifications.cpp and calls.cpp).
  // no-donations, donate-by-name: what the host leaves with the system (see
  //   outside.cpp).
  // ints-unsigned, ints-32: the integer arguments of the message and call
  //   paths are unsigned long long (Q) / unsigned int (I) (withHostInteger).
  // notify-args-changed: the message-arrival method's encoding takes an
  //   extra object argument, a signature no hook of the system fits.
  // about-version-in-bar: the About page's version label lies in the band
  //   its navigation bar covers.
  // contacts-type-3: the contact manager lists the user's contacts under
  //   contact type 3 only (see contacts.cpp).
  static const std::set<std::string> names = {"store-ignores-canshow",
                                              "list-through-logic",
                                              "session-key-first",
                                              "fts-immutable",
                                              "push-3arg",
                                              "ilink-calls",
                                              "message-keys-alt",
                                              "callkit-end-reportended",
                                              "callkit-end-atdate",
                                              "callkit-end-none",
                                              "no-donations",
                                              "donate-by-name",
                                              "ints-unsigned",
                                              "ints-32",
                                              "notify-args-changed",
                                              "about-version-in-bar",
                                              "contacts-type-3"};
  return names;
}

bool HostBuild::lacksMethod(const std::string& cls, const std::string& sel) const {
  return lackingMethods.count({cls, sel}) != 0;
}

HostApp& HostApp::current() {
  void* h = sim::currentProcess().hostApp();
  if (!h) {
    std::fprintf(stderr, "hostapp: no simulated host app in this process\n");
    std::abort();
  }
  return *static_cast<HostApp*>(h);
}

sim::LaunchHooks HostApp::launchHooks() {
  sim::LaunchHooks hooks;
  hooks.defineHostClasses = [this] { defineClasses(); };
  hooks.hostDidFinishLaunching = [this] { buildFirstScreen(); };
  hooks.appSwitcherSnapshot = [this] { takeSnapshot(); };
  // Back from a suspension, the host fetches what came meanwhile.
  hooks.hostDidResume = [this] { sessionsChanged(); };
  // CallKit keeps an app with a call on screen running.
  hooks.hostBusy = [] { return sim::currentProcess().device().notices().anyRinging(); };
  return hooks;
}

void HostApp::defineClasses() {
  sim::Process& p = sim::currentProcess();
  p.setHostApp(this);
  p.platform().bundleInfo["CFBundleIdentifier"] = p.device().appBundleIdentifier();
  originals_.clear();
  classes_.clear();
  defineContextClasses(*this);
  defineContactClasses(*this);
  defineMainListClasses(*this);
  defineSurfaceClasses(*this);
  defineAboutClasses(*this);
  defineNotificationClasses(*this);
  defineCallClasses(*this);
  for (const auto& [cls, sel] : build.raisingMethods) makeRaising(cls, sel);
}

void HostApp::makeRaising(const std::string& cls, const std::string& sel) {
  build.raisingMethods.insert({cls, sel});
  if (!sim::hasCurrentProcess() || sim::currentProcess().hostApp() != this) return;
  for (const std::string& key : {sel, "+" + sel}) {
    if (rt::IMP imp = originalImplementation(cls, key))
      sim::runtime().makeRaising(imp, "simulated host failure in " +
                                          std::string(key[0] == '+' ? "+[" : "-[") + cls + " " +
                                          sel + "]");
  }
}

rt::IMP HostApp::originalImplementation(const std::string& cls, const std::string& sel) const {
  auto it = originals_.find({cls, sel});
  return it == originals_.end() ? nullptr : it->second;
}

std::set<std::string> HostApp::definedClassNames() const {
  std::set<std::string> names = classes_;
  for (const auto& [key, imp] : originals_) names.insert(key.first);
  return names;
}

void HostModel::bringSessionToTop(const std::string& username) {
  std::erase(sessions, username);
  sessions.insert(sessions.begin(), username);
  noteRecentChat(username);
}

void HostModel::noteRecentChat(const std::string& username) {
  std::erase(recentChats, username);
  recentChats.insert(recentChats.begin(), username);
  if (recentChats.size() > 10) recentChats.resize(10);
}

void HostModel::addMoment(const std::string& username, const std::string& text) {
  long serial = 1;
  for (const Moment& m : moments) serial = std::max(serial, m.serial + 1);
  moments.insert(moments.begin(), Moment{username, text, serial});
}

namespace {

rt::Id newController(const char* cls) {
  rt::Class c = rt::getClass(cls);
  if (!c) c = rt::getClass("UIViewController");  // a build without the screen shows a blank one
  return rt::send<rt::Id>(rt::send<rt::Id>(c, "alloc"), "init");
}

rt::Id inNavigation(rt::Id root) {
  return rt::send<rt::Id>(rt::send<rt::Id>(rt::getClass("UINavigationController"), "alloc"),
                          "initWithRootViewController:", root);
}

}  // namespace

void HostApp::buildFirstScreen() {
  indexedChats_.clear();
  mainFrame_ = newController("NewMainFrameViewController");
  contactsScreen_ = newController("ContactsViewController");
  rt::send<void>(mainFrame_, "setTitle:", rt::str("微信"));
  rt::send<void>(contactsScreen_, "setTitle:", rt::str("通讯录"));
  // Moments lives under 发现 and the About page under 我, each tab with its
  // own navigation bar: a press there is not a press on the chat list's bar.
  rt::Id discover = newController("UIViewController");
  rt::Id me = newController("UIViewController");
  rt::send<void>(discover, "setTitle:", rt::str("发现"));
  rt::send<void>(me, "setTitle:", rt::str("我"));
  tabs_ = rt::send<rt::Id>(rt::send<rt::Id>(rt::getClass("UITabBarController"), "alloc"), "init");
  rt::send<void>(tabs_, "setViewControllers:",
                 rt::array({inNavigation(mainFrame_), inNavigation(contactsScreen_),
                            inNavigation(discover), inNavigation(me)}));
  sim::addWindow(tabs_, true);
  sim::appear(mainFrame_);
  indexNewChats();
}

void HostApp::selectTab(long index) {
  rt::Id current = rt::send<rt::Id>(tabs_, "selectedViewController");
  rt::send<void>(tabs_, "setSelectedIndex:", (unsigned long)index);
  rt::Id next = rt::send<rt::Id>(tabs_, "selectedViewController");
  if (current == next) return;
  if (current) sim::disappear(rt::send<rt::Id>(current, "topViewController"));
  sim::appear(rt::send<rt::Id>(next, "topViewController"));
}

HostClass::HostClass(HostApp& app, std::string name, std::string super)
    : app_(app), name_(std::move(name)) {
  if (app_.build.lacksClass(name_)) return;
  builder_ = std::make_unique<sim::ClassBuilder>(name_, super);
  app_.noteClass(name_);
}

void HostClass::note(const std::string& sel, rt::IMP imp) { app_.noteMethod(name_, sel, imp); }

rt::Class HostClass::build() { return builder_ ? builder_->build() : nullptr; }

}  // namespace hostapp
