// A simulated host app running in a fresh process, with a key window, for
// tests of code that reaches the host. Set the model and build up first, then
// call start().
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "startup/startup.hpp"
#include "sim/hostapp/host_app.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sim/frameworks/uikit/leaks.hpp"
#include "support/value_printer.hpp"

namespace qbtest {

class HostWorld : public ::testing::Test {
 protected:
  sim::Device device;
  hostapp::HostApp host;
  std::unique_ptr<sim::Process> process;

  void start() {
    process = std::make_unique<sim::Process>(device);
    process->launch(host.launchHooks());
  }
  // Launches with the library loaded, as `quenby-sim launch` does.
  void launchWithLibrary();
  void wait(double seconds) { process->advance(seconds); }
  // The log lines written since `from` that contain `text`.
  long countLog(const std::string& text, std::size_t from = 0) const {
    long n = 0;
    for (std::size_t i = from; i < device.log().size(); ++i)
      if (device.log()[i].text.find(text) != std::string::npos) ++n;
    return n;
  }
  void TearDown() override {
    if (process) {
      EXPECT_FALSE(process->crashed()) << process->crashReason();
      for (const auto& v : process->runtime().violations())
        ADD_FAILURE() << "runtime violation: " << v;
    }
  }
  // What the library made that is alive with no owner, as `show leaks` prints it.
  std::vector<std::string> leaks() const { return sim::describeLeaks(); }
  std::vector<std::string> logLines() const {
    std::vector<std::string> out;
    for (const auto& l : device.log()) out.push_back(l.text);
    return out;
  }
  void addFriend(std::string username, std::string nick = "", std::string remark = "",
                 std::string alias = "") {
    hostapp::Friend f;
    f.username = std::move(username);
    f.nickname = std::move(nick);
    f.remark = std::move(remark);
    f.alias = std::move(alias);
    host.model.friends.push_back(f);
  }
};

inline void HostWorld::launchWithLibrary() {
  process = std::make_unique<sim::Process>(device);
  sim::LaunchHooks hooks = host.launchHooks();
  hooks.libraryEntry = core::libraryEntry;
  process->launch(hooks);
}

}  // namespace qbtest
