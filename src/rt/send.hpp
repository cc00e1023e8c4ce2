// Message sending and calls of stored implementations. Both keep the
// Objective-C calling convention: the IMP is cast back to R (*)(Id, SEL, A...)
// and called, so hook code is the same in both worlds. Arguments must have
// exactly the C++ types of the method (long for NSInteger, bool for BOOL):
// the simulated runtime compares every send and every call with the method's
// type encoding and raises on a mismatch, so an ABI slip fails a test instead
// of crashing a phone.
#pragma once

#include <string_view>
#include <type_traits>

#include "rt/encoding.hpp"
#include "rt/runtime.hpp"
#include "rt/types.hpp"

namespace rt {

namespace detail {
// The implementation a message reaches (objc_msgSend's lookup). Raises
// NSInvalidArgumentException when no method answers (unrecognized selector)
// and when the method's types differ from `sig`.
IMP resolveSend(Id receiver, SEL sel, const std::string& sig);
// Checks a call of a stored IMP against the types it was installed with.
// Raises for a null imp and on a type mismatch; `self` is read as a message
// would read it.
void checkCall(IMP imp, Id self, SEL sel, const std::string& sig);

template <typename R>
R zero() {
  if constexpr (!std::is_void_v<R>) return R{};
}
}  // namespace detail

// objc_msgSend. A message to nil does nothing and returns zero, as on iOS.
template <typename R = void, typename... A>
R send(Id receiver, SEL s, A... args) {
  if (!receiver) return detail::zero<R>();
  IMP imp = detail::resolveSend(receiver, s, signature<R, A...>());
  return reinterpret_cast<R (*)(Id, SEL, A...)>(imp)(receiver, s, args...);
}
template <typename R = void, typename... A>
R send(Id receiver, std::string_view selector, A... args) {
  return send<R, A...>(receiver, sel(selector), args...);
}
// A class method.
template <typename R = void, typename... A>
R send(Class cls, SEL s, A... args) {
  return send<R, A...>(toId(cls), s, args...);
}
template <typename R = void, typename... A>
R send(Class cls, std::string_view selector, A... args) {
  return send<R, A...>(toId(cls), sel(selector), args...);
}

// Calls a stored original implementation. The caller must test the slot
// first: a null imp raises here (on a phone it would crash).
template <typename R = void, typename... A>
R call(IMP imp, Id self, SEL cmd, A... args) {
  detail::checkCall(imp, self, cmd, signature<R, A...>());
  return reinterpret_cast<R (*)(Id, SEL, A...)>(imp)(self, cmd, args...);
}

}  // namespace rt
