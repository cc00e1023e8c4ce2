// The host's user context and service registry: MMContext, MMContextManager
// and MMServiceCenter. Services are made on first request, one per class.
#include <map>

#include "sim/hostapp/host_app.hpp"
#include "sim/hostapp/host_class.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/runtime.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

struct ServiceCenterState {
  std::map<rt::Class, Id> services;
};

Id singleton(const char* cls) {
  Id& slot = sim::runtime().singleton(std::string("hostapp.") + cls);
  if (!slot) {
    rt::Class c = rt::getClass(cls);
    if (c) slot = rt::send<Id>(rt::send<Id>(c, "alloc"), "init");
  }
  return slot;
}

Id context(Id, SEL) { return singleton("MMContext"); }
Id contextServiceCenter(Id, SEL) { return singleton("MMServiceCenter"); }
Id manager(Id, SEL) { return singleton("MMContextManager"); }
Id defaultCenter(Id, SEL) { return singleton("MMServiceCenter"); }

Id getService(Id self, SEL, rt::Class cls) {
  if (!cls) return nullptr;
  if (!sim::native<ServiceCenterState>(self)) self->native = ServiceCenterState{};
  Id& service = sim::native<ServiceCenterState>(self)->services[cls];
  if (!service) service = rt::send<Id>(rt::send<Id>(cls, "alloc"), "init");
  return service;
}

}  // namespace

Id hostService(const char* cls) {
  rt::Class c = rt::getClass(cls);
  Id center = singleton("MMServiceCenter");
  return c && center ? getService(center, nullptr, c) : nullptr;
}

void defineContextClasses(HostApp& app) {
  HostClass(app, "MMServiceCenter")
      .classMethod("defaultCenter", defaultCenter)
      .method("getService:", getService)
      .build();
  HostClass(app, "MMContext")
      .classMethod("activeUserContext", context)
      .classMethod("currentContext", context)
      .classMethod("rootContext", context)
      .method("serviceCenter", contextServiceCenter)
      .build();
  HostClass(app, "MMContextManager")
      .classMethod("sharedInstance", manager)
      .method("activeUserContext", context)
      .method("currentContext", context)
      .build();
}

}  // namespace hostapp
