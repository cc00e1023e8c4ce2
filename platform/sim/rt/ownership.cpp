// objc_retain, objc_release, objc_storeWeak and objc_loadWeakRetained over
// the counts kept on each object. The last release sends dealloc, whose
// chain (each class its own, NSObject's last) lets go of what the object
// owns and leaves it freed.
#include "rt/ownership.hpp"

#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/process.hpp"

namespace rt::detail {
namespace {

sim::Lifetimes* lifetimes() {
  if (!sim::hasCurrentProcess() || !sim::currentProcess().hasRuntime()) return nullptr;
  sim::Lifetimes& l = sim::runtime().lifetimes();
  return l.tearingDown ? nullptr : &l;
}

}  // namespace

Id retain(Id obj) {
  if (!obj || !lifetimes()) return obj;
  sim::touch(obj, "retain");
  ++obj->retainCount;
  return obj;
}

void release(Id obj) {
  sim::Lifetimes* l = lifetimes();
  if (!obj || !l) return;
  sim::touch(obj, "release");
  if (obj->deallocating || --obj->retainCount > 0 || !l->strict) return;
  obj->deallocating = true;
  l->clearWeak(obj);
  send<void>(obj, "dealloc");
}

void storeWeak(Id* slot, Id obj) {
  if (sim::Lifetimes* l = lifetimes())
    l->storeWeak(slot, obj);
  else
    *slot = obj && !obj->freed ? obj : nullptr;
}

Id loadWeakRetained(Id* slot) {
  Id obj = *slot;
  if (!obj || obj->deallocating || obj->freed) return nullptr;
  return retain(obj);
}

}  // namespace rt::detail
