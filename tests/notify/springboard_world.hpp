// SpringBoard as a second process on the device, with the library loaded.
// Helpers write the host's gate file into its container and hand SpringBoard
// notifications as the system does.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/gate_file.hpp"
#include "notify/springboard_gate.hpp"
#include "sim/device/device.hpp"
#include "sim/process.hpp"
#include "sim/springboard/springboard.hpp"
#include "startup/startup.hpp"
#include "sys/files.hpp"

namespace qbtest {

struct Presented {
  std::string identifier;
  bool sound = false;
};

// What a SpringBoard build has of the dispatcher.
enum class SpringBoardBuild { Full, LacksDispatcher, LacksPostMethod };

class SpringBoardWorld : public ::testing::Test {
 protected:
  sim::Device device;
  std::unique_ptr<sim::Process> springBoard;

  void TearDown() override {
    if (springBoard) {
      EXPECT_FALSE(springBoard->crashed()) << springBoard->crashReason();
      for (const auto& v : springBoard->runtime().violations())
        ADD_FAILURE() << "runtime violation: " << v;
    }
  }

  // Starts SpringBoard with the library loaded (a running one ends first).
  void startSpringBoard(SpringBoardBuild build = SpringBoardBuild::Full) {
    springBoard.reset();
    springBoard = std::make_unique<sim::Process>(device, sim::ProcessKind::SpringBoard);
    springboard::boot(
        *springBoard,
        [build](const std::string& cls, const std::string& sel) {
          if (cls != "NCNotificationDispatcher") return false;
          return build == SpringBoardBuild::LacksDispatcher
                     ? sel.empty()
                     : build == SpringBoardBuild::LacksPostMethod &&
                           sel == "postNotificationWithRequest:";
        },
        core::libraryEntry);
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
  void writeGateValue(const base::Value& v) {
    sim::Process writer(device);  // the app, writing it
    sys::createDirectories(device.documentsPath() + "/Quenby");
    ASSERT_TRUE(sys::writePropertyList(gatePath(), v, sys::PlistFormat::Xml, nullptr,
                                       sys::FileProtection::None));
  }
  // Past the pause after which SpringBoard looks at the gate's stamp again.
  void settle() {
    if (springBoard) springBoard->advance(notify::kGateRecheckInterval_s);
  }
  // The app in front ("" for the home or lock screen).
  void front(const std::string& bundle) { device.setFrontmostApp(bundle); }

  // A notification of `bundle` handed to SpringBoard as the system does, the
  // record of what the user noticed opened first, as on its arrival. Whether
  // it was presented (in Notification Center), and with its sound.
  std::optional<Presented> post(const std::string& bundle, const std::string& thread,
                                base::Value userInfo = base::Value(base::Dictionary{}),
                                bool sound = true) {
    static int serial = 0;
    sim::SystemNotification n;
    n.bundleIdentifier = bundle;
    n.identifier = "n" + std::to_string(++serial);
    n.title = "Someone";
    n.body = "hi";
    n.threadIdentifier = thread;
    n.userInfo = std::move(userInfo);
    n.sound = sound;
    device.notices().begin(thread.empty() ? "?" : thread, "message", "hi", 0);
    springboard::present(*springBoard, n);
    for (const auto& d : device.records().delivered())
      if (d.identifier == n.identifier)
        return Presented{d.identifier, device.notices().all().back().sound};
    EXPECT_EQ(device.notices().all().back().banner, "") << "a banner without an entry";
    return std::nullopt;
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
