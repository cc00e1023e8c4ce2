#include "sim/frameworks/user_notifications.hpp"

#include <thread>

#include "rt/exception.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/frameworks/outside_frameworks.hpp"
#include "sim/process.hpp"
#include "sim/runtime/runtime.hpp"
#include "sys/audio.hpp"
#include "sys/user_notifications.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

struct CompletionBlock {
  std::function<void(Id)> body;
};

SystemRecords& records() { return currentProcess().device().records(); }

// --- UNNotificationContent / UNMutableNotificationContent: properties kept
// in instance variables of these names.
constexpr char kTitle[] = "_title", kBody[] = "_body", kSound[] = "_sound",
               kUserInfo[] = "_userInfo", kThread[] = "_threadIdentifier";

constexpr const char* kContentFields[] = {kTitle, kBody, kSound, kUserInfo, kThread};

Id contentMutableCopy(Id self, SEL) {
  Id copy = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
  for (const char* f : kContentFields) rt::setIvarNamed(copy, f, rt::ivarNamed(self, f));
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
  rt::setIvarNamed(r, "_identifier", identifier);
  rt::setIvarNamed(r, "_content", content);
  rt::setIvarNamed(r, "_trigger", trigger);
  return r;
}
Id requestIdentifier(Id self, SEL) { return rt::ivarNamed(self, "_identifier"); }
Id requestContent(Id self, SEL) { return rt::ivarNamed(self, "_content"); }
Id requestTrigger(Id self, SEL) { return rt::ivarNamed(self, "_trigger"); }

// --- UNUserNotificationCenter: an added request is shown at once.
Id currentCenter(Id, SEL) {
  Id& slot = runtime().singleton("UNUserNotificationCenter");
  if (!slot) slot = rt::createInstance(rt::getClass("UNUserNotificationCenter"));
  return slot;
}
std::string text(Id s) { return rt::asString(s).value_or(""); }

// An added request goes to the system, which shows it (through SpringBoard
// once it runs) and keeps it in Notification Center until the app removes
// it: the system never clears one by itself.
void addRequest(Id, SEL, Id request, Id completion) {
  Id content = rt::send<Id>(request, "content");
  if (content) {
    Process& p = currentProcess();
    auto bundle = p.platform().bundleInfo.find("CFBundleIdentifier");
    SystemNotification n;
    n.bundleIdentifier =
        bundle != p.platform().bundleInfo.end() ? bundle->second : p.device().appBundleIdentifier();
    n.identifier = text(rt::send<Id>(request, "identifier"));
    n.title = text(rt::send<Id>(content, "title"));
    n.body = text(rt::send<Id>(content, "body"));
    n.threadIdentifier = text(rt::send<Id>(content, "threadIdentifier"));
    n.userInfo = rt::toValue(rt::send<Id>(content, "userInfo")).value_or(base::Value());
    n.sound = rt::send<Id>(content, "sound") != nullptr;
    p.device().present(n);
  }
  sys::callNotificationCompletion(completion, nullptr);
}

// A delivered notification as the framework hands it back: a fresh request
// and content rebuilt from the record, as iOS decodes them from its store.
Id notificationFrom(const DeliveredNotification& d) {
  Id content = rt::send<Id>(rt::getClass("UNMutableNotificationContent"), "new");
  rt::send<void>(content, "setTitle:", rt::str(d.title));
  rt::send<void>(content, "setBody:", rt::str(d.body));
  rt::send<void>(content, "setThreadIdentifier:", rt::str(d.threadIdentifier));
  rt::send<void>(content, "setUserInfo:",
                 d.userInfo.isNull() ? rt::dictionary({}) : rt::fromValue(d.userInfo));
  Id request = rt::send<Id>(rt::getClass("UNNotificationRequest"),
                            "requestWithIdentifier:content:trigger:", rt::str(d.identifier),
                            content, Id{nullptr});
  Id n = rt::send<Id>(rt::getClass("UNNotification"), "new");
  rt::setIvarNamed(n, "_request", request);
  return n;
}
Id notificationRequest(Id self, SEL) { return rt::ivarNamed(self, "_request"); }

// The list is read and the handler called later, on a queue of the
// framework's own, never on the caller's stack.
void getDelivered(Id, SEL, Id handler) {
  if (!handler) rt::raise("NSInternalInconsistencyException", "completionHandler is nil");
  sys::async([handler] {
    std::vector<Id> list;
    for (const DeliveredNotification& d : records().delivered())
      list.push_back(notificationFrom(d));
    Id array = rt::array(list);
    onSystemQueue([handler, array] { sys::callNotificationCompletion(handler, array); });
  });
}

// Removal happens asynchronously; identifiers match exactly.
void removeDelivered(Id, SEL, Id identifiers) {
  std::vector<std::string> ids;
  for (Id i : rt::elements(identifiers)) ids.push_back(text(i));
  sys::async([ids] { records().removeDelivered(ids); });
}

}  // namespace

void onSystemQueue(std::function<void()> work) {
  sys::async([work = std::move(work)] { std::thread(work).join(); });
}

void writeLater(std::function<void(SystemRecords&)> write, Id completion) {
  sys::async([write = std::move(write)] { write(records()); });
  sys::callCompletionLater(completion);
}

Id makeCompletionBlock(std::function<void(Id)> body) {
  Id block = rt::createInstance(rt::getClass("NSBlock"));
  block->native = CompletionBlock{std::move(body)};
  return block;
}

void callCompletionBlock(Id block, Id error) {
  if (auto* b = native<CompletionBlock>(block)) b->body(error);
}

void registerUserNotifications(Runtime&) {
  ClassBuilder("NSBlock").build();
  ClassBuilder("UNNotificationContent")
      .ivar(kTitle, "@")
      .ivar(kBody, "@")
      .ivar(kSound, "@")
      .ivar(kUserInfo, "@")
      .ivar(kThread, "@")
      .method("title", ivarProperty<kTitle>)
      .method("body", ivarProperty<kBody>)
      .method("sound", ivarProperty<kSound>)
      .method("userInfo", ivarProperty<kUserInfo>)
      .method("threadIdentifier", ivarProperty<kThread>)
      .method("mutableCopy", contentMutableCopy)
      .build();
  ClassBuilder("UNMutableNotificationContent", "UNNotificationContent")
      .method("setTitle:", setIvarProperty<kTitle>)
      .method("setBody:", setIvarProperty<kBody>)
      .method("setSound:", setIvarProperty<kSound>)
      .method("setUserInfo:", setIvarProperty<kUserInfo>)
      .method("setThreadIdentifier:", setIvarProperty<kThread>)
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
      .method("getDeliveredNotificationsWithCompletionHandler:", getDelivered)
      .method("removeDeliveredNotificationsWithIdentifiers:", removeDelivered)
      .build();
  ClassBuilder("UNNotification")
      .ivar("_request", "@")
      .method("request", notificationRequest)
      .build();
}

}  // namespace sim
