// SpringBoard as a second process on the device, with the classes the
// lock-screen guard hooks, the library loaded. Helpers write the host's gate
// file into its container and post requests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/gate_file.hpp"
#include "notify/springboard_gate.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "springboard_classes.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/process.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "startup/startup.hpp"
#include "sys/files.hpp"

namespace qbtest {

class SpringBoardWorld : public ::testing::Test {
 protected:
  sim::Device device;
  std::unique_ptr<sim::Process> springBoard;
  std::vector<Presented> presented;
  rt::Strong dispatcher;

  SpringBoardWorld() {
    springboard::presented = &presented;
    springboard::frontmost.clear();
  }
  void TearDown() override {
    if (springBoard) {
      EXPECT_FALSE(springBoard->crashed()) << springBoard->crashReason();
      for (const auto& v : springBoard->runtime().violations())
        ADD_FAILURE() << "runtime violation: " << v;
    }
    dispatcher.reset();
    springBoard.reset();
    springboard::presented = nullptr;
  }

  // Starts SpringBoard with the library loaded (a running one ends first).
  void startSpringBoard(SpringBoardBuild build = SpringBoardBuild::Full) {
    dispatcher.reset();
    springBoard.reset();
    springBoard = std::make_unique<sim::Process>(device);
    sim::LaunchHooks hooks;
    hooks.defineHostClasses = [build] { springboard::defineClasses(build); };
    hooks.libraryEntry = core::libraryEntry;
    springBoard->launch(hooks);
    if (rt::Class cls = rt::getClass("NCNotificationDispatcher"))
      dispatcher = rt::Strong::adopt(rt::send<rt::Id>(cls, "new"));
  }

  std::string gatePath() const { return core::gateFilePathIn(device.containerPath()); }
  // The gate as the app writes it: the secrets hashed with the record's salt.
  void writeGate(long mode, std::vector<std::string> secrets, long visibility = 0,
                 core::DailyWindows windows = {}) {
    core::GateRecord r;
    r.salt = "5a17";
    for (const std::string& s : secrets) r.hashes.insert(core::gateHash(r.salt, s));
    r.notifyMode = mode;
    r.visibilityControl = visibility;
    r.windows = std::move(windows);
    writeGateValue(core::gateValue(r));
    settle();
  }
  // Past the pause after which SpringBoard looks at the gate's stamp again.
  void settle() {
    if (springBoard) springBoard->advance(notify::kGateRecheckInterval_s);
  }
  void writeGateValue(const base::Value& v) {
    sys::createDirectories(device.documentsPath() + "/Quenby");
    ASSERT_TRUE(sys::writePropertyList(gatePath(), v, sys::PlistFormat::Xml, nullptr,
                                       sys::FileProtection::None));
  }

  // A request of `section` as the system hands it to SpringBoard; the record
  // of what the user noticed is opened first, as the system does on arrival.
  // Returns whether it was presented, and with its sound.
  std::optional<Presented> post(const std::string& section, const std::string& thread,
                                base::Value userInfo = base::Value(base::Dictionary{}),
                                bool sound = true) {
    static int serial = 0;
    std::string id = "n" + std::to_string(++serial);
    device.notices().begin(thread.empty() ? "?" : thread, "message", "hi", 0);
    std::size_t before = presented.size();
    springBoard->runGuarded([&] {
      rt::Id r = sim::autorelease(rt::send<rt::Id>(rt::getClass("NCNotificationRequest"), "new"));
      rt::setIvarNamed(r, springboard::kSection, rt::str(section));
      rt::setIvarNamed(r, springboard::kIdentifier, rt::str(id));
      if (!thread.empty()) rt::setIvarNamed(r, springboard::kThread, rt::str(thread));
      rt::Id content =
          sim::autorelease(rt::send<rt::Id>(rt::getClass("NCNotificationContent"), "new"));
      rt::setIvarNamed(content, springboard::kTitle, rt::str("Someone"));
      rt::setIvarNamed(content, springboard::kMessage, rt::str("hi"));
      rt::setIvarNamed(r, springboard::kContent, content);
      if (sound)
        rt::setIvarNamed(
            r, springboard::kSound,
            sim::autorelease(rt::send<rt::Id>(rt::getClass("NCNotificationSound"), "new")));
      rt::setIvarNamed(r, springboard::kContext,
                       rt::dictionary({{rt::str("userInfo"), rt::fromValue(userInfo)}}));
      rt::send<void>(dispatcher.get(), "postNotificationWithRequest:", r);
    });
    springBoard->runDue();
    if (presented.size() == before) return std::nullopt;
    EXPECT_EQ(presented.back().identifier, id);
    return presented.back();
  }
  int vibrations() const {
    auto all = const_cast<sim::Device&>(device).notices().all();
    return all.empty() ? 0 : all.back().vibrations;
  }
  long countLog(const std::string& text, std::size_t from = 0) const {
    long n = 0;
    for (std::size_t i = from; i < device.log().size(); ++i)
      if (device.log()[i].text.find(text) != std::string::npos) ++n;
    return n;
  }
};

}  // namespace qbtest
