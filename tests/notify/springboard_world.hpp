// SpringBoard as a second process on the device, with the classes the
// lock-screen guard hooks: a dispatcher that presents each request as the
// system does (a banner, its sound when it has one, an entry in Notification
// Center), the requests and their mutable copies, and the app in front.
// Helpers write the host's gate file into its container and post requests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/gate_file.hpp"
#include "rt/foundation.hpp"
#include "rt/ownership.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/process.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"
#include "startup/startup.hpp"
#include "sys/files.hpp"

namespace qbtest {

struct Presented {
  std::string identifier;
  bool sound = false;
};

// What a SpringBoard build has of the dispatcher.
enum class SpringBoardBuild { Full, LacksDispatcher, LacksPostMethod };

namespace springboard {

inline std::vector<Presented>* presented = nullptr;
inline std::string frontmost;  // "" is the home or lock screen

constexpr char kSection[] = "_sectionIdentifier", kIdentifier[] = "_notificationIdentifier",
               kThread[] = "_threadIdentifier", kContent[] = "_content", kSound[] = "_sound",
               kContext[] = "_context", kTitle[] = "_title", kMessage[] = "_message",
               kBundle[] = "_bundleIdentifier";
constexpr const char* kRequestFields[] = {kSection, kIdentifier, kThread,
                                          kContent, kSound,      kContext};

inline rt::Id mutableCopy(rt::Id self, rt::SEL) {
  rt::Id copy = rt::send<rt::Id>(rt::getClass("NCMutableNotificationRequest"), "new");
  for (const char* f : kRequestFields) rt::setIvarNamed(copy, f, rt::ivarNamed(self, f));
  return copy;
}

inline void post(rt::Id, rt::SEL, rt::Id request) {
  sim::Notices& n = sim::currentProcess().device().notices();
  n.banner("system");
  bool sound = rt::send<rt::Id>(request, "sound") != nullptr;
  if (sound) n.sound();
  presented->push_back(
      {rt::asString(rt::send<rt::Id>(request, "notificationIdentifier")).value_or(""), sound});
}

inline rt::Id frontMost(rt::Id, rt::SEL) {
  if (frontmost.empty()) return nullptr;
  rt::Id app = sim::autorelease(rt::send<rt::Id>(rt::getClass("SBApplication"), "new"));
  rt::setIvarNamed(app, kBundle, rt::str(frontmost));
  return app;
}

inline void defineClasses(SpringBoardBuild build) {
  sim::currentProcess().platform().bundleInfo["CFBundleIdentifier"] = "com.apple.springboard";
  sim::ClassBuilder("UIApplication")
      .method("_accessibilityFrontMostApplication", frontMost)
      .build();
  sim::ClassBuilder("SBApplication")
      .ivar(kBundle, "@")
      .method("bundleIdentifier", sim::ivarProperty<kBundle>)
      .build();
  sim::ClassBuilder("NCNotificationSound").build();
  sim::ClassBuilder("NCNotificationContent")
      .ivar(kTitle, "@")
      .ivar(kMessage, "@")
      .method("title", sim::ivarProperty<kTitle>)
      .method("message", sim::ivarProperty<kMessage>)
      .build();
  sim::ClassBuilder("NCNotificationRequest")
      .ivar(kSection, "@")
      .ivar(kIdentifier, "@")
      .ivar(kThread, "@")
      .ivar(kContent, "@")
      .ivar(kSound, "@")
      .ivar(kContext, "@")
      .method("sectionIdentifier", sim::ivarProperty<kSection>)
      .method("notificationIdentifier", sim::ivarProperty<kIdentifier>)
      .method("threadIdentifier", sim::ivarProperty<kThread>)
      .method("content", sim::ivarProperty<kContent>)
      .method("sound", sim::ivarProperty<kSound>)
      .method("context", sim::ivarProperty<kContext>)
      .method("mutableCopy", mutableCopy)
      .build();
  sim::ClassBuilder("NCMutableNotificationRequest", "NCNotificationRequest")
      .method("setSound:", sim::setIvarProperty<kSound>)
      .method("setThreadIdentifier:", sim::setIvarProperty<kThread>)
      .method("setContent:", sim::setIvarProperty<kContent>)
      .method("setContext:", sim::setIvarProperty<kContext>)
      .build();
  if (build == SpringBoardBuild::LacksDispatcher) return;
  sim::ClassBuilder dispatcher("NCNotificationDispatcher");
  if (build != SpringBoardBuild::LacksPostMethod)
    dispatcher.method("postNotificationWithRequest:", post);
  dispatcher.build();
}

}  // namespace springboard

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
