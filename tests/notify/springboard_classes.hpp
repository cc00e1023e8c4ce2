// SpringBoard's classes as a test or benchmark defines them in a second
// process: a dispatcher that presents each request as the system does (a
// banner, its sound when it has one, an entry in Notification Center), the
// requests and their mutable copies, and the app in front.
#pragma once

#include <string>
#include <vector>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/process.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/lifetimes.hpp"

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
  if (presented)
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

}  // namespace qbtest
