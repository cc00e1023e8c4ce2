// The host's user context and service registry: MMContext, MMContextManager
// and MMServiceCenter. Services are made on first request, one per class.
#include <array>
#include <cstdint>
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
  // Asked on every read of a host list: the key is built without allocating.
  thread_local std::string key;
  key.assign("hostapp.").append(cls);
  Id& slot = sim::runtime().singleton(key);
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
  // A service lives as long as its process, and the host's lists ask for
  // theirs on every row: each thread keeps the last few it found, by the
  // address of the class name each caller spells as a literal.
  struct Found {
    std::uint64_t generation = 0;
    const char* cls = nullptr;
    Id service = nullptr;
  };
  thread_local std::array<Found, 16> found;
  std::uint64_t generation = sim::runtime().generation();
  Found& f = found[(reinterpret_cast<std::uintptr_t>(cls) >> 3) % found.size()];
  if (f.generation == generation && f.cls == cls) return f.service;
  rt::Class c = rt::getClass(cls);
  Id center = singleton("MMServiceCenter");
  Id service = c && center ? getService(center, nullptr, c) : nullptr;
  if (service) f = {generation, cls, service};
  return service;
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
