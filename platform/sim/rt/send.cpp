// Message dispatch with the checks that stand in for a phone's crash: an
// unanswered message raises as the runtime does, a call whose C++ types differ
// from the method's encoding raises and is recorded, and injected host faults
// raise where the host's method would run. Types are compared as the iOS
// resolver compares them: what differs only where arm64 passes it the same
// way (an integer's sign, an object's class) is the same call.
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

}  // namespace

IMP resolveSend(Id receiver, SEL s, const std::string& sig) {
  sim::touch(receiver, selName(s));
  sim::Runtime& rtm = sim::runtime();
  Method m = rtm.lookup(receiver->isa, s);
  if (!m) {
    bool isClass = receiver->isa && receiver->isa->meta;
    raise("NSInvalidArgumentException", methodLabel(receiver, s) +
                                            ": unrecognized selector sent to " +
                                            (isClass ? "class" : "instance"));
  }
  if (m->hasTypes && !sameCallTypes(sig, m->normalized))
    mismatch(rtm, methodLabel(receiver, s), m->normalized, sig);
  if (const std::string* what = rtm.raisingWhat(m->imp)) raise("NSGenericException", *what);
  return m->imp;
}

void checkCall(IMP imp, Id self, SEL s, const std::string& sig) {
  // The original reads its receiver as any method does: a freed one stops the process.
  sim::touch(self, selName(s));
  sim::Runtime& rtm = sim::runtime();
  if (!imp) {
    rtm.recordViolation(std::string("call of a null IMP for ") + std::string(selName(s)));
    raise("NSInvalidArgumentException",
          std::string("call of a null IMP for ") + std::string(selName(s)));
  }
  if (!rtm.implementationAccepts(imp, sig)) {
    std::string what =
        std::string("stored IMP for ") + std::string(selName(s)) + ": called as " + sig;
    rtm.recordViolation(what);
    raise("NSInvalidArgumentException", "type mismatch " + what);
  }
  if (const std::string* what = rtm.raisingWhat(imp)) raise("NSGenericException", *what);
}

}  // namespace rt::detail
