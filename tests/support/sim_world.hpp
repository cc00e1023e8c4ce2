// A fresh simulated device and process for one test, as if the app had just
// started: every test begins with an untouched runtime and empty state.
#pragma once

#include <gtest/gtest.h>

#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "support/value_printer.hpp"

namespace qbtest {

class SimWorld : public ::testing::Test {
 protected:
  sim::Device device;
  sim::Process process{device};

  // Type mismatches raise inside the runtime, and faults of our own are caught
  // by the guards; both are recorded, and any record fails the test.
  void TearDown() override {
    EXPECT_FALSE(process.crashed()) << process.crashReason();
    if (!expectViolations_) {
      for (const auto& v : process.runtime().violations())
        ADD_FAILURE() << "runtime violation: " << v;
    }
  }
  void allowViolations() { expectViolations_ = true; }

 private:
  bool expectViolations_ = false;
};

}  // namespace qbtest
