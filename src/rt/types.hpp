// The runtime's handle types. They mirror the Objective-C runtime's own
// (id, Class, SEL, IMP, Method, Ivar) so that the iOS backend is a plain cast;
// the structs are opaque here and defined by the backend.
#pragma once

namespace rt {

struct Object;      // objc_object
struct ClassData;   // objc_class; a class is also an object
struct Selector;    // objc_selector
struct MethodData;  // objc_method
struct IvarData;    // objc_ivar

using Id = Object*;
using Class = ClassData*;
using SEL = const Selector*;
// An implementation. It always has the Objective-C calling convention
// R fn(Id self, SEL cmd, Args...), and is called by casting it back to that
// type (see rt::call).
using IMP = void (*)();
using Method = MethodData*;
using Ivar = IvarData*;

}  // namespace rt
