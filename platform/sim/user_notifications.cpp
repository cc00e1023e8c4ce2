#include "sim/user_notifications.hpp"

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/class_builder.hpp"
#include "sim/process.hpp"
#include "sim/runtime.hpp"
#include "sys/audio.hpp"
#include "sys/user_notifications.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

struct CompletionBlock {
  std::function<void(Id)> body;
};

Notices& notices() { return currentProcess().device().notices(); }

Id ivar(Id obj, const char* name) {
  return rt::ivarObject(obj, rt::getInstanceVariable(rt::classOf(obj), name));
}
void setIvar(Id obj, const char* name, Id v) {
  rt::setIvarObject(obj, rt::getInstanceVariable(rt::classOf(obj), name), v);
}

// --- UNNotificationContent / UNMutableNotificationContent: properties kept
// in instance variables of these names.
constexpr char kTitle[] = "_title", kBody[] = "_body", kSound[] = "_sound",
               kUserInfo[] = "_userInfo", kThread[] = "_threadIdentifier";
template <const char* Name>
Id property(Id self, SEL) {
  return ivar(self, Name);
}
template <const char* Name>
void setProperty(Id self, SEL, Id v) {
  setIvar(self, Name, v);
}

constexpr const char* kContentFields[] = {kTitle, kBody, kSound, kUserInfo, kThread};

Id contentMutableCopy(Id self, SEL) {
  Id copy = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
  for (const char* f : kContentFields) setIvar(copy, f, ivar(self, f));
  return copy;
}

// --- UNNotificationSound
Id defaultSound(Id, SEL) {
  Id& slot = runtime().singleton("UNNotificationSound.default");
  if (!slot) slot = rt::send<Id>(rt::getClass("UNNotificationSound"), "new");
  return slot;
}

// --- UNNotificationRequest
Id requestWith(Id, SEL, Id identifier, Id content, Id trigger) {
  Id r = rt::send<Id>(rt::getClass("UNNotificationRequest"), "new");
  setIvar(r, "_identifier", identifier);
  setIvar(r, "_content", content);
  setIvar(r, "_trigger", trigger);
  return r;
}
Id requestIdentifier(Id self, SEL) { return ivar(self, "_identifier"); }
Id requestContent(Id self, SEL) { return ivar(self, "_content"); }
Id requestTrigger(Id self, SEL) { return ivar(self, "_trigger"); }

// --- UNUserNotificationCenter: an added request is shown at once.
Id currentCenter(Id, SEL) {
  Id& slot = runtime().singleton("UNUserNotificationCenter");
  if (!slot) slot = rt::createInstance(rt::getClass("UNUserNotificationCenter"));
  return slot;
}
void addRequest(Id, SEL, Id request, Id completion) {
  Id content = rt::send<Id>(request, "content");
  if (content) {
    notices().banner("system");
    if (rt::send<Id>(content, "sound")) notices().sound();
  }
  sys::callNotificationCompletion(completion, nullptr);
}

}  // namespace

Id makeCompletionBlock(std::function<void(Id)> body) {
  Id block = rt::createInstance(rt::getClass("NSBlock"));
  block->native = CompletionBlock{std::move(body)};
  return block;
}

void registerUserNotifications(Runtime&) {
  ClassBuilder("NSBlock").build();
  ClassBuilder("UNNotificationContent")
      .ivar(kTitle, "@")
      .ivar(kBody, "@")
      .ivar(kSound, "@")
      .ivar(kUserInfo, "@")
      .ivar(kThread, "@")
      .method("title", property<kTitle>)
      .method("body", property<kBody>)
      .method("sound", property<kSound>)
      .method("userInfo", property<kUserInfo>)
      .method("threadIdentifier", property<kThread>)
      .method("mutableCopy", contentMutableCopy)
      .build();
  ClassBuilder("UNMutableNotificationContent", "UNNotificationContent")
      .method("setTitle:", setProperty<kTitle>)
      .method("setBody:", setProperty<kBody>)
      .method("setSound:", setProperty<kSound>)
      .method("setUserInfo:", setProperty<kUserInfo>)
      .method("setThreadIdentifier:", setProperty<kThread>)
      .build();
  ClassBuilder("UNNotificationSound").classMethod("defaultSound", defaultSound).build();
  ClassBuilder("UNNotificationRequest")
      .ivar("_identifier", "@")
      .ivar("_content", "@")
      .ivar("_trigger", "@")
      .classMethod("requestWithIdentifier:content:trigger:", requestWith)
      .method("identifier", requestIdentifier)
      .method("content", requestContent)
      .method("trigger", requestTrigger)
      .build();
  ClassBuilder("UNUserNotificationCenter")
      .classMethod("currentNotificationCenter", currentCenter)
      .method("addNotificationRequest:withCompletionHandler:", addRequest)
      .build();
}

}  // namespace sim

namespace sys {

void playSystemSound(unsigned soundID) {
  sim::Notices& n = sim::currentProcess().device().notices();
  if (soundID == kSystemSoundVibrate)
    n.vibrate();
  else
    n.sound();
}

void callNotificationCompletion(rt::Id completionHandler, rt::Id error) {
  if (auto* block = sim::native<sim::CompletionBlock>(completionHandler)) block->body(error);
}

}  // namespace sys
