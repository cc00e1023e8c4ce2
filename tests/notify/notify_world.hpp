// A host app with the library loaded, two friends (alice, and bob who is
// made secret) and helpers that send messages and calls through the host's
// own paths and read back what the device recorded for the user.
#pragma once

#include <optional>
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
    return recorded(device.notices().latest(from));
  }
  sim::Announcement call(const std::string& from, bool video) {
    process->runGuarded([&] { host.deliverCall(from, video); });
    process->runDue();
    return recorded(device.notices().latestCall(from));
  }
  sim::Announcement latestCall(const std::string& from) {
    return recorded(device.notices().latestCall(from));
  }
  // A crashed app records nothing more; say so rather than read a record that is not there.
  sim::Announcement recorded(std::optional<sim::Announcement> a) {
    EXPECT_FALSE(process->crashed()) << process->crashReason();
    EXPECT_TRUE(a.has_value()) << "nothing was recorded";
    return a.value_or(sim::Announcement{});
  }
  void setMode(long mode) { config().setSecretNotifyMode(mode); }
  void setSwitches(bool voice, bool video) {
    config().setVoipVoiceNotifyEnabled(voice);
    config().setVoipVideoNotifyEnabled(video);
  }
};

}  // namespace qbtest
