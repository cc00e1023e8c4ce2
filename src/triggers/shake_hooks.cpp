#include "triggers/shake_hooks.hpp"

#include "rt/runtime.hpp"

namespace triggers {
namespace {

void installImp(rt::Id, rt::SEL) { QBShakeHooks::install(); }

}  // namespace

// Not built yet: start-up reaches it through the runtime; it does nothing.
void QBShakeHooks::install() {}

void QBShakeHooks::registerRuntimeClass() {
  if (rt::getClass("QBShakeHooks")) return;
  rt::Class cls = rt::allocateClassPair(rt::getClass("NSObject"), "QBShakeHooks");
  if (!cls) return;
  rt::registerClassPair(cls);
  rt::addClassMethod(cls, rt::sel("install"), installImp);
}

}  // namespace triggers
