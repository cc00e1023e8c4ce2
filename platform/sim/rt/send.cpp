// Message dispatch with the checks that stand in for a phone's crash: an
// unanswered message raises as the runtime does, a call whose C++ types differ
// from the method's encoding raises and is recorded, and injected host faults
// raise where the host's method would run. Types are compared as the iOS
// resolver compares them: what differs only where arm64 passes it the same
// way (an integer's sign, an object's class) is the same call.
#include <cstdint>
#include <string>

#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/lifetimes.hpp"
#include "sim/runtime/runtime.hpp"

namespace rt::detail {
namespace {

std::string methodLabel(Id receiver, SEL s) {
  bool isClass = receiver->isa && receiver->isa->meta;
  return std::string(isClass ? "+[" : "-[") + std::string(className(receiver)) + " " +
         std::string(selName(s)) + "]";
}

[[noreturn]] void mismatch(sim::Runtime& rtm, const std::string& label, const std::string& expected,
                           const std::string& got) {
  std::string what = label + ": called as " + got + " but the method is " + expected;
  rtm.recordViolation(what);
  raise("NSInvalidArgumentException", "type mismatch " + what);
}

// Whether a call of `imp` as `sig` is safe, remembered per thread while no
// implementation's types change (the generation is unique across runtimes).
bool acceptedBefore(const sim::TypeChecks& types, IMP imp, const std::string& sig) {
  struct Slot {
    IMP imp = nullptr;
    const std::string* sig = nullptr;
    std::uint64_t generation = 0;
  };
  thread_local Slot recent[256];
  std::uint64_t generation = types.generation();
  auto h =
      (reinterpret_cast<std::uintptr_t>(imp) >> 4) ^ (reinterpret_cast<std::uintptr_t>(&sig) >> 3);
  Slot& slot = recent[(h ^ (h >> 8)) % 256];
  if (slot.imp == imp && slot.sig == &sig && slot.generation == generation) return true;
  if (!types.implementationAccepts(imp, sig)) return false;
  slot = {imp, &sig, generation};
  return true;
}

}  // namespace

IMP resolveSend(Id receiver, SEL s, const std::string& sig) {
  sim::touch(receiver, s);
  sim::Runtime& rtm = sim::runtime();
  sim::Dispatch& d = rtm.methods().dispatch(receiver->isa, s);
  if (!d.method) {
    bool isClass = receiver->isa && receiver->isa->meta;
    raise("NSInvalidArgumentException", methodLabel(receiver, s) +
                                            ": unrecognized selector sent to " +
                                            (isClass ? "class" : "instance"));
  }
  // A method's types never change, so a signature that matched it once matches again.
  if (d.matched != &sig && d.method->hasTypes) {
    if (!sameCallTypes(sig, d.method->normalized))
      mismatch(rtm, methodLabel(receiver, s), d.method->normalized, sig);
    d.matched = &sig;
  }
  if (const std::string* what = rtm.raisingWhat(d.imp)) raise("NSGenericException", *what);
  return d.imp;
}

void checkCall(IMP imp, Id self, SEL s, const std::string& sig) {
  // The original reads its receiver as any method does: a freed one stops the process.
  sim::touch(self, s);
  sim::Runtime& rtm = sim::runtime();
  if (!imp) {
    rtm.recordViolation(std::string("call of a null IMP for ") + std::string(selName(s)));
    raise("NSInvalidArgumentException",
          std::string("call of a null IMP for ") + std::string(selName(s)));
  }
  if (!acceptedBefore(rtm.types(), imp, sig)) {
    std::string what =
        std::string("stored IMP for ") + std::string(selName(s)) + ": called as " + sig;
    rtm.recordViolation(what);
    raise("NSInvalidArgumentException", "type mismatch " + what);
  }
  if (const std::string* what = rtm.raisingWhat(imp)) raise("NSGenericException", *what);
}

}  // namespace rt::detail
