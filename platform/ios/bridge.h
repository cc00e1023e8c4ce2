// What every file of the iOS backend shares: the casts between the facade's
// opaque handles and the runtime's own types, UTF-8 conversions, and the two
// exception boundaries (host NSException into rt::Exception on the way in, no
// exception at all on the way back out of a block into UIKit or libdispatch).
#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <string>
#include <string_view>
#include <utility>

#include "rt/exception.hpp"
#include "rt/types.hpp"

namespace ios {

inline id object(rt::Id o) { return (__bridge id) reinterpret_cast<void*>(o); }

// Hands an object to the system without ownership. The autorelease keeps it
// alive past the caller's statement even when ARC would otherwise release a
// returned temporary at once; the system keeps nothing longer than a turn of
// the main queue that UIKit or the host does not also hold.
inline rt::Id handle(id o) {
  __autoreleasing id kept = o;
  return reinterpret_cast<rt::Id>((__bridge void*)kept);
}

inline Class cls(rt::Class c) { return (__bridge Class) reinterpret_cast<void*>(c); }
inline rt::Class handle(Class c) { return reinterpret_cast<rt::Class>((__bridge void*)c); }
inline SEL sel(rt::SEL s) { return reinterpret_cast<SEL>(const_cast<rt::Selector*>(s)); }
inline rt::SEL handle(SEL s) { return reinterpret_cast<rt::SEL>(s); }
inline Method method(rt::Method m) { return reinterpret_cast<Method>(m); }
inline rt::Method handle(Method m) { return reinterpret_cast<rt::Method>(m); }
inline Ivar ivar(rt::Ivar v) { return reinterpret_cast<Ivar>(v); }
inline rt::Ivar handle(Ivar v) { return reinterpret_cast<rt::Ivar>(v); }
inline IMP imp(rt::IMP i) { return reinterpret_cast<IMP>(i); }
inline rt::IMP handle(IMP i) { return reinterpret_cast<rt::IMP>(i); }

// UTF-8 in and out. Text that is not valid UTF-8 gives the empty string
// rather than nil, so that nothing downstream is handed nil by surprise.
inline NSString* ns(std::string_view utf8) {
  NSString* s = [[NSString alloc] initWithBytes:utf8.data()
                                         length:utf8.size()
                                       encoding:NSUTF8StringEncoding];
  return s ? s : [[NSString alloc] initWithBytes:"" length:0 encoding:NSUTF8StringEncoding];
}
inline std::string utf8(NSString* s) {
  const char* c = s ? s.UTF8String : nullptr;
  return c ? std::string(c) : std::string();
}

// Runs `work`; an NSException it raises continues as rt::Exception with the
// same name and reason, which is what the system's handlers read.
template <typename F>
auto translating(F&& work) -> decltype(work()) {
  @try {
    return work();
  } @catch (NSException* e) {
    throw rt::Exception(utf8(e.name), utf8(e.reason));
  }
}

// The boundary of every block the backend hands to UIKit, Foundation or
// libdispatch: whatever the system's code raises is logged here and goes no
// further, since those frames were not built to unwind a C++ exception.
void logEscaped(const char* where) noexcept;
template <typename F>
void shielded(const char* where, F&& work) noexcept {
  try {
    work();
  } catch (...) {
    logEscaped(where);
  }
}

}  // namespace ios
