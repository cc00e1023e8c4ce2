#include "hostapp/host_app.hpp"

#include <cstdio>
#include <cstdlib>

#include "hostapp/host_class.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime.hpp"
#include "sim/uikit/uikit.hpp"

namespace hostapp {

void defineContextClasses(HostApp& app);
void defineContactClasses(HostApp& app);

Friend* HostModel::findFriend(const std::string& username) {
  for (Friend& f : friends)
    if (f.username == username) return &f;
  return nullptr;
}

const Room* HostModel::findRoom(const std::string& username) const {
  for (const Room& r : rooms)
    if (r.username == username) return &r;
  return nullptr;
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
  return hooks;
}

void HostApp::defineClasses() {
  sim::currentProcess().setHostApp(this);
  originals_.clear();
  defineContextClasses(*this);
  defineContactClasses(*this);
  for (const auto& [cls, sel] : build.raisingMethods) makeRaising(cls, sel);
}

void HostApp::makeRaising(const std::string& cls, const std::string& sel) {
  build.raisingMethods.insert({cls, sel});
  if (!sim::hasCurrentProcess() || sim::currentProcess().hostApp() != this) return;
  for (const std::string& key : {sel, "+" + sel}) {
    if (rt::IMP imp = originalImplementation(cls, key))
      sim::runtime().makeRaising(imp, "simulated host failure in " + std::string(key[0] == '+' ? "+[" : "-[") + cls +
                                          " " + sel + "]");
  }
}

rt::IMP HostApp::originalImplementation(const std::string& cls, const std::string& sel) const {
  auto it = originals_.find({cls, sel});
  return it == originals_.end() ? nullptr : it->second;
}

void HostApp::buildFirstScreen() {
  // A plain root until the host's own screens join: the app has a key window.
  rt::Id root = rt::send<rt::Id>(rt::send<rt::Id>(rt::getClass("UITabBarController"), "alloc"), "init");
  sim::addWindow(root, true);
}

HostClass::HostClass(HostApp& app, std::string name, std::string super) : app_(app), name_(std::move(name)) {
  if (!app_.build.lacksClass(name_)) builder_ = std::make_unique<sim::ClassBuilder>(name_, super);
}

void HostClass::note(const std::string& sel, rt::IMP imp) { app_.noteMethod(name_, sel, imp); }

rt::Class HostClass::build() { return builder_ ? builder_->build() : nullptr; }

}  // namespace hostapp
