// Message sending on iOS: every send goes through objc_msgSend itself, cast
// by the facade to the method's C++ type. Before that the method's own
// encoding is compared with the call's (rt::sameCallTypes: an integer's sign
// or an object's class does not matter to arm64), so an ABI slip raises an exception
// the system can log instead of corrupting registers on the phone. These
// raise NSExceptions, as the runtime's own failures do: they can happen while
// a hook asks the host's original, and then travel on through host frames.
#include "rt/send.hpp"

#import <Foundation/Foundation.h>
#include <objc/message.h>
#include <objc/runtime.h>

#include "bridge.h"
#include "rt/encoding.hpp"

namespace rt::detail {
namespace {

[[noreturn]] void raiseInRuntime(const std::string& reason) {
  @throw [NSException exceptionWithName:NSInvalidArgumentException
                                 reason:ios::ns(reason)
                               userInfo:nil];
}

}  // namespace

IMP resolveSend(Id receiver, SEL s, const std::string& sig) {
  Method m =
      ios::handle(class_getInstanceMethod(object_getClass(ios::object(receiver)), ios::sel(s)));
  // No method: the runtime's forwarding and doesNotRecognizeSelector: answer.
  if (const char* types = typeEncoding(m)) {
    std::string normalized = normalizedEncoding(types);
    if (!sameCallTypes(sig, normalized))
      raiseInRuntime(std::string(className(receiver)) + " " + std::string(selName(s)) +
                     ": called as " + sig + " but the method is " + normalized);
  }
  return ios::handle(reinterpret_cast<::IMP>(objc_msgSend));
}

void checkCall(IMP imp, Id, SEL s, const std::string&) {
  // A stored IMP carries no types on iOS; the simulated runtime checks them.
  if (!imp) raiseInRuntime("call of a null IMP for " + std::string(selName(s)));
}

}  // namespace rt::detail
