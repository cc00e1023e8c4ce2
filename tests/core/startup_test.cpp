// Start-up as a freshly launched process sees it.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "core/startup.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "support/sim_world.hpp"

namespace {

using core::QBConfig;

class Startup : public qbtest::SimWorld {};

TEST_F(Startup, EveryLaunchStartsHiddenAndTheRestRunsOnTheMainQueue) {
  QBConfig::shared().setUnlocked(true);
  core::libraryEntry();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "step A hides at once";
  EXPECT_EQ(process.mainQueue().pending(), 1u) << "step B is queued, not run";
  QBConfig::shared().setUnlocked(true);
  process.runDue();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "step C hides again";
  EXPECT_EQ(process.mainQueue().pending(), 2u) << "the two delayed re-applies";
  process.advance(1.4);
  EXPECT_EQ(process.mainQueue().pending(), 0u);
}

TEST_F(Startup, StepCRunsOncePerProcess) {
  core::libraryEntry();
  core::libraryEntry();
  process.runDue();
  EXPECT_EQ(process.mainQueue().pending(), 2u) << "a second step B installs nothing and schedules nothing";
}

TEST_F(Startup, TheShakeClassIsThereToBeFoundByName) {
  EXPECT_EQ(rt::getClass("QBShakeHooks"), nullptr);
  core::libraryEntry();
  rt::Class shake = rt::getClass("QBShakeHooks");
  ASSERT_NE(shake, nullptr);
  EXPECT_TRUE(rt::respondsTo(rt::toId(shake), rt::sel("install")));
  process.runDue();
  for (const auto& line : device.log()) {
    EXPECT_EQ(line.text.find("FATAL"), std::string::npos) << line.text;
    EXPECT_EQ(line.text.find(" ex: "), std::string::npos) << line.text;
  }
}

TEST(StartupProcesses, EachProcessStartsFromScratch) {
  sim::Device device;
  sim::LaunchHooks hooks;
  hooks.libraryEntry = core::libraryEntry;
  {
    sim::Process first(device);
    first.launch(hooks);
    QBConfig::shared().addSecretUser("alice");
    QBConfig::shared().setUnlocked(true);
  }
  sim::Process second(device);
  second.launch(hooks);
  EXPECT_FALSE(QBConfig::shared().unlocked());
  EXPECT_TRUE(QBConfig::shared().isSecretUser("alice")) << "from the file the first process saved";
}

}  // namespace
