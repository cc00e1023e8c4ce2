#include "sim/springboard/springboard.hpp"

#include <map>
#include <mutex>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/device/device.hpp"
#include "sim/frameworks/ivar_property.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/runtime/runtime.hpp"

namespace springboard {
namespace {

using rt::Id;
using rt::SEL;

constexpr char kSection[] = "_sectionIdentifier", kIdentifier[] = "_notificationIdentifier",
               kThread[] = "_threadIdentifier", kContent[] = "_content", kSound[] = "_sound",
               kContext[] = "_context", kTitle[] = "_title", kMessage[] = "_message",
               kBundle[] = "_bundleIdentifier";
constexpr const char* kRequestFields[] = {kSection, kIdentifier, kThread,
                                          kContent, kSound,      kContext};

// Every method SpringBoard defines, by (class, selector), with its own
// implementation: what `host raises` makes raise, whatever hooks it since.
std::map<std::pair<std::string, std::string>, rt::IMP>& ownMethods() {
  static std::map<std::pair<std::string, std::string>, rt::IMP> methods;
  return methods;
}
std::mutex ownMethodsMutex;

// A class as this build has it: nothing when it lacks the class, and each
// method only when it does not lack that one.
class Builder {
 public:
  Builder(const Lacks& lacks, std::string name, std::string super = "NSObject")
      : lacks_(lacks), name_(std::move(name)) {
    if (!lacks_(name_, "")) builder_.emplace(name_, super);
  }
  Builder& ivar(const char* name) {
    if (builder_) builder_->ivar(name, "@");
    return *this;
  }
  template <typename R, typename... A>
  Builder& method(const std::string& sel, R (*fn)(Id, SEL, A...)) {
    {
      std::lock_guard lock(ownMethodsMutex);
      ownMethods()[{name_, sel}] = reinterpret_cast<rt::IMP>(fn);
    }
    if (builder_ && !lacks_(name_, sel)) builder_->method(sel, fn);
    return *this;
  }
  void build() {
    if (builder_) builder_->build();
  }

 private:
  const Lacks& lacks_;
  std::string name_;
  std::optional<sim::ClassBuilder> builder_;
};

std::string text(Id s) { return rt::asString(s).value_or(""); }

Id requestMutableCopy(Id self, SEL) {
  rt::Class cls = rt::getClass("NCMutableNotificationRequest");
  if (!cls) cls = rt::classOf(self);
  Id copy = rt::send<Id>(cls, "new");
  for (const char* f : kRequestFields) rt::setIvarNamed(copy, f, rt::ivarNamed(self, f));
  return copy;
}

// The person holding the phone gets what the request carries.
void postNotification(Id, SEL, Id request) {
  if (!request) return;
  sim::Device& device = sim::currentProcess().device();
  Id content = rt::ivarNamed(request, kContent);
  Id context = rt::ivarNamed(request, kContext);
  Id userInfo = context ? rt::send<Id>(context, "objectForKey:", rt::str("userInfo")) : nullptr;
  sim::SystemNotification n;
  n.bundleIdentifier = text(rt::ivarNamed(request, kSection));
  n.identifier = text(rt::ivarNamed(request, kIdentifier));
  n.threadIdentifier = text(rt::ivarNamed(request, kThread));
  n.title = content ? text(rt::ivarNamed(content, kTitle)) : "";
  n.body = content ? text(rt::ivarNamed(content, kMessage)) : "";
  n.userInfo = rt::toValue(userInfo).value_or(base::Value());
  n.sound = rt::ivarNamed(request, kSound) != nullptr;
  sim::presentDirectly(device.notices(), device.records(), n);
}

Id frontMostApplication(Id, SEL) {
  std::string front = sim::currentProcess().device().frontmostApp();
  if (front.empty()) return nullptr;
  rt::Class cls = rt::getClass("SBApplication");
  if (!cls) return nullptr;
  Id app = rt::send<Id>(cls, "new");
  rt::setIvarNamed(app, kBundle, rt::str(front));
  return sim::autorelease(app);
}

void defineClasses(const Lacks& lacks) {
  Builder(lacks, "SpringBoard", "UIApplication")
      .method("_accessibilityFrontMostApplication", frontMostApplication)
      .build();
  Builder(lacks, "SBApplication")
      .ivar(kBundle)
      .method("bundleIdentifier", sim::ivarProperty<kBundle>)
      .build();
  Builder(lacks, "NCNotificationContent")
      .ivar(kTitle)
      .ivar(kMessage)
      .method("title", sim::ivarProperty<kTitle>)
      .method("message", sim::ivarProperty<kMessage>)
      .build();
  Builder(lacks, "NCNotificationSound").build();
  Builder(lacks, "NCNotificationRequest")
      .ivar(kSection)
      .ivar(kIdentifier)
      .ivar(kThread)
      .ivar(kContent)
      .ivar(kSound)
      .ivar(kContext)
      .method("sectionIdentifier", sim::ivarProperty<kSection>)
      .method("notificationIdentifier", sim::ivarProperty<kIdentifier>)
      .method("threadIdentifier", sim::ivarProperty<kThread>)
      .method("content", sim::ivarProperty<kContent>)
      .method("sound", sim::ivarProperty<kSound>)
      .method("context", sim::ivarProperty<kContext>)
      .method("mutableCopy", requestMutableCopy)
      .build();
  Builder(lacks, "NCMutableNotificationRequest", "NCNotificationRequest")
      .method("setSectionIdentifier:", sim::setIvarProperty<kSection>)
      .method("setNotificationIdentifier:", sim::setIvarProperty<kIdentifier>)
      .method("setThreadIdentifier:", sim::setIvarProperty<kThread>)
      .method("setContent:", sim::setIvarProperty<kContent>)
      .method("setSound:", sim::setIvarProperty<kSound>)
      .method("setContext:", sim::setIvarProperty<kContext>)
      .build();
  Builder(lacks, "NCNotificationDispatcher")
      .method("postNotificationWithRequest:", postNotification)
      .build();
}

// The request as SpringBoard builds it from what reached it.
Id makeRequest(const sim::SystemNotification& n) {
  rt::Class cls = rt::getClass("NCNotificationRequest");
  rt::Class contentClass = rt::getClass("NCNotificationContent");
  rt::Class soundClass = rt::getClass("NCNotificationSound");
  if (!cls || !contentClass) return nullptr;
  Id content = sim::autorelease(rt::send<Id>(contentClass, "new"));
  rt::setIvarNamed(content, kTitle, rt::str(n.title));
  rt::setIvarNamed(content, kMessage, rt::str(n.body));
  Id request = sim::autorelease(rt::send<Id>(cls, "new"));
  rt::setIvarNamed(request, kSection, rt::str(n.bundleIdentifier));
  rt::setIvarNamed(request, kIdentifier, rt::str(n.identifier));
  rt::setIvarNamed(request, kThread, rt::str(n.threadIdentifier));
  rt::setIvarNamed(request, kContent, content);
  if (n.sound && soundClass)
    rt::setIvarNamed(request, kSound, sim::autorelease(rt::send<Id>(soundClass, "new")));
  Id userInfo = n.userInfo.isNull() ? rt::dictionary({}) : rt::fromValue(n.userInfo);
  rt::setIvarNamed(request, kContext, rt::dictionary({{rt::str("userInfo"), userInfo}}));
  return request;
}

}  // namespace

const std::vector<std::string>& classNames() {
  static const std::vector<std::string> names = {"SpringBoard",
                                                 "SBApplication",
                                                 "NCNotificationContent",
                                                 "NCNotificationSound",
                                                 "NCNotificationRequest",
                                                 "NCMutableNotificationRequest",
                                                 "NCNotificationDispatcher"};
  return names;
}

bool defines(const std::string& cls, const std::string& sel) {
  std::lock_guard lock(ownMethodsMutex);
  return ownMethods().count({cls, sel}) != 0;
}

void makeRaising(sim::Process& process, const std::string& cls, const std::string& sel) {
  rt::IMP imp = nullptr;
  {
    std::lock_guard lock(ownMethodsMutex);
    auto it = ownMethods().find({cls, sel});
    if (it != ownMethods().end()) imp = it->second;
  }
  if (!imp) return;
  sim::InProcess here(process);
  sim::runtime().makeRaising(imp, "simulated host failure in -[" + cls + " " + sel + "]");
}

void boot(sim::Process& process, const Lacks& lacks, const std::function<void()>& libraryEntry,
          const std::vector<std::pair<std::string, std::string>>& raising) {
  sim::InProcess here(process);
  process.platform().bundleInfo["CFBundleIdentifier"] = kBundleIdentifier;
  process.platform().bundleInfo["CFBundleExecutable"] = "SpringBoard";
  sim::LaunchHooks hooks;
  hooks.defineHostClasses = [lacks, raising, &process] {
    defineClasses(lacks);
    for (const auto& [cls, sel] : raising) makeRaising(process, cls, sel);
    // UIApplication's shared instance is SpringBoard's own.
    if (rt::Class sb = rt::getClass("SpringBoard"))
      sim::runtime().singleton("UIApplication") = rt::createInstance(sb);
  };
  hooks.libraryEntry = libraryEntry;
  process.launch(hooks);
}

void present(sim::Process& process, const sim::SystemNotification& n) {
  sim::InProcess here(process);
  sim::Device& device = process.device();
  bool presented = false;
  process.runGuarded([&] {
    rt::Class dispatcherClass = rt::getClass("NCNotificationDispatcher");
    if (!dispatcherClass) return;
    Id& dispatcher = sim::runtime().singleton("NCNotificationDispatcher");
    if (!dispatcher) dispatcher = rt::send<Id>(dispatcherClass, "new");
    Id request = makeRequest(n);
    if (!request || !rt::respondsTo(dispatcher, rt::sel("postNotificationWithRequest:"))) return;
    presented = true;
    rt::send<void>(dispatcher, "postNotificationWithRequest:", request);
  });
  if (!presented && !process.crashed()) sim::presentDirectly(device.notices(), device.records(), n);
}

}  // namespace springboard
