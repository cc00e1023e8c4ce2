// A simulated host app running in a fresh process, with a key window, for
// tests of code that reaches the host. Set the model and build up first, then
// call start().
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "hostapp/host_app.hpp"
#include "sim/device.hpp"
#include "sim/process.hpp"
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
  void TearDown() override {
    if (process) {
      EXPECT_FALSE(process->crashed()) << process->crashReason();
      for (const auto& v : process->runtime().violations()) ADD_FAILURE() << "runtime type mismatch: " << v;
    }
  }
  std::vector<std::string> logLines() const {
    std::vector<std::string> out;
    for (const auto& l : device.log()) out.push_back(l.text);
    return out;
  }
  void addFriend(std::string username, std::string nick = "", std::string remark = "", std::string alias = "") {
    hostapp::Friend f;
    f.username = std::move(username);
    f.nickname = std::move(nick);
    f.remark = std::move(remark);
    f.alias = std::move(alias);
    host.model.friends.push_back(f);
  }
};

}  // namespace qbtest
