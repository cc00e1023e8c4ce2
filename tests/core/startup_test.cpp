// Start-up as a freshly launched process sees it.
#include <gtest/gtest.h>

#include "core/config.hpp"
#include "startup/startup.hpp"
#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "support/sim_world.hpp"
#include "sys/files.hpp"

namespace {

using core::QBConfig;

class Startup : public qbtest::SimWorld {};

long logged(const sim::Device& device, const std::string& text) {
  long n = 0;
  for (const auto& l : device.log()) n += l.text == text;
  return n;
}

TEST_F(Startup, EveryLaunchStartsHiddenAndTheRestRunsOnTheMainQueue) {
  QBConfig::shared().setUnlocked(true);
  core::libraryEntry();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "step A hides at once";
  EXPECT_EQ(process.mainQueue().pending(), 1u) << "step B is queued, not run";
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 0);
  QBConfig::shared().setUnlocked(true);
  process.runDue();
  EXPECT_FALSE(QBConfig::shared().unlocked()) << "step C hides again";
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 1);
  EXPECT_EQ(logged(device, "[QB] schedule OK"), 1);
}

TEST_F(Startup, StepCRunsOncePerProcess) {
  core::libraryEntry();
  core::libraryEntry();
  process.advance(2);
  EXPECT_EQ(logged(device, "[QB] session hooks READY (early, default secret)"), 1);
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 1) << "a second step B installs nothing";
  EXPECT_EQ(logged(device, "[QB] schedule OK"), 1);
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

TEST_F(Startup, WithoutTheShakeClassStepCSkipsTheShakeAndGoesOn) {
  // The name is taken by a class without the installer, so ours cannot register.
  rt::registerClassPair(rt::allocateClassPair(rt::getClass("NSObject"), "QBShakeHooks"));
  core::libraryEntry();
  process.advance(2);
  EXPECT_FALSE(rt::respondsTo(rt::toId(rt::getClass("QBShakeHooks")), rt::sel("install")));
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 1);
  EXPECT_EQ(logged(device, "[QB] long-press wake OK"), 1)
      << "what comes before the shake is installed";
  for (const auto& line : device.log())
    EXPECT_EQ(line.text.find("FATAL"), std::string::npos) << line.text;
}

int gStepsRun = 0;
void raisingStep() { rt::raise("NSInternalInconsistencyException", "step broke"); }
void countingStep() { ++gStepsRun; }
void countingThenRaisingStep() {
  ++gStepsRun;
  raisingStep();
  ++gStepsRun;  // never reached
}

// A failure of step A is logged and the main-queue step still runs; a failure
// there is logged and ends that step.
TEST_F(Startup, FatalFailuresAreLoggedAndStepBRunsAfterAFailedStepA) {
  gStepsRun = 0;
  core::runStartupSteps(raisingStep, countingStep);
  EXPECT_EQ(logged(device, "[QB] early FATAL: step broke"), 1);
  EXPECT_EQ(gStepsRun, 0) << "step B waits for the main queue";
  process.runDue();
  EXPECT_EQ(gStepsRun, 1);
  core::runStartupSteps(countingStep, countingThenRaisingStep);
  process.runDue();
  EXPECT_EQ(logged(device, "[QB] init FATAL: step broke"), 1);
  EXPECT_EQ(gStepsRun, 3);
  EXPECT_FALSE(process.crashed());
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

namespace {

// The package loads the library into the host and into SpringBoard; what it
// installs depends on which one it finds itself in.
TEST_F(Startup, SpringBoardGetsOnlyTheGuardAndAnyOtherProcessNothing) {
  process.platform().bundleInfo["CFBundleIdentifier"] = "com.apple.springboard";
  core::libraryEntry();
  process.advance(2);
  EXPECT_EQ(logged(device, "[QB] SpringBoard: lock-screen guard only"), 1);
  EXPECT_EQ(logged(device, "[QB] session hooks READY (early, default secret)"), 0);
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 0);
  EXPECT_FALSE(sys::fileExists(device.documentsPath() + "/Quenby")) << "no settings touched";

  sim::Process other(device);
  other.platform().bundleInfo["CFBundleIdentifier"] = "com.example.notes";
  core::libraryEntry();
  other.advance(2);
  EXPECT_EQ(logged(device, "[QB] not the host (com.example.notes): nothing installed"), 1);
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 0);
  EXPECT_EQ(rt::getClass("QBShakeHooks"), nullptr);
}

// Any one of the host's classes is enough: a build lacking some is still the host.
TEST_F(Startup, TheHostIsKnownByAnyOfItsClasses) {
  process.platform().bundleInfo["CFBundleIdentifier"] = "com.example.messenger";
  rt::registerClassPair(rt::allocateClassPair(rt::getClass("NSObject"), "CContactMgr"));
  core::libraryEntry();
  process.advance(2);
  EXPECT_EQ(logged(device, "[QB] auto-lock OK"), 1);
}

}  // namespace
