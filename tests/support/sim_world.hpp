// A fresh simulated device and process for one test, as if the app had just
// started: every test begins with an untouched runtime and empty state.
#pragma once

#include <gtest/gtest.h>

#include "sim/device.hpp"
#include "sim/process.hpp"
#include "support/value_printer.hpp"

namespace qbtest {

class SimWorld : public ::testing::Test {
 protected:
  sim::Device device;
  sim::Process process{device};

  // Type mismatches raise inside the runtime and may be swallowed by the code
  // under test; this makes any of them fail the test that caused it.
  void TearDown() override {
    EXPECT_FALSE(process.crashed()) << process.crashReason();
    if (!expectViolations_) {
      for (const auto& v : process.runtime().violations())
        ADD_FAILURE() << "runtime type mismatch: " << v;
    }
  }
  void allowViolations() { expectViolations_ = true; }

 private:
  bool expectViolations_ = false;
};

}  // namespace qbtest
