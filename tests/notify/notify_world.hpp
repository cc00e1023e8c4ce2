// A host app with the library loaded, two friends (alice, and bob who is
// made secret) and helpers that send messages and calls through the host's
// own paths and read back what the device recorded for the user.
#pragma once

#include <string>

#include "core/config.hpp"
#include "support/host_world.hpp"

namespace qbtest {

class NotifyWorld : public HostWorld {
 protected:
  void SetUp() override {
    addFriend("alice", "Alice");
    addFriend("bob", "Bob");
    host.model.sessions = {"alice", "bob"};
  }
  core::QBConfig& config() { return core::QBConfig::shared(); }
  // Launches (hidden, as every start) with bob secret.
  void launch() {
    launchWithLibrary();
    config().addSecretUser("bob");
    process->runDue();
  }
  sim::Announcement message(const std::string& from, const std::string& text = "hi") {
    process->runGuarded([&] { host.deliverMessage(from, text); });
    process->runDue();
    return *device.notices().latest(from);
  }
  sim::Announcement call(const std::string& from, bool video) {
    process->runGuarded([&] { host.deliverCall(from, video); });
    process->runDue();
    return *device.notices().latestCall(from);
  }
  sim::Announcement latestCall(const std::string& from) { return *device.notices().latestCall(from); }
  void setMode(long mode) { config().setSecretNotifyMode(mode); }
  void setSwitches(bool voice, bool video) {
    config().setVoipVoiceNotifyEnabled(voice);
    config().setVoipVideoNotifyEnabled(video);
  }
};

}  // namespace qbtest
