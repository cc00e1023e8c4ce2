// The runtime facade on the Objective-C runtime: each call is the runtime
// function its declaration names, with the facade's null rules in front.
#include "rt/runtime.hpp"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <string>

#include "bridge.h"

namespace rt {
namespace {

std::string_view view(const char* s) { return s ? std::string_view(s) : std::string_view(); }

bool objectTyped(const char* types) { return types && types[0] == '@'; }

}  // namespace

Class getClass(std::string_view name) {
  if (name.empty()) return nullptr;
  return ios::handle(NSClassFromString(ios::ns(name)));
}

SEL sel(std::string_view name) {
  if (name.empty()) return nullptr;
  return ios::handle(sel_registerName(std::string(name).c_str()));
}

std::string_view selName(SEL s) { return s ? view(sel_getName(ios::sel(s))) : std::string_view(); }

Class classOf(Id obj) { return obj ? ios::handle(object_getClass(ios::object(obj))) : nullptr; }
Class superclass(Class c) { return c ? ios::handle(class_getSuperclass(ios::cls(c))) : nullptr; }
bool isMetaclass(Class c) { return c && class_isMetaClass(ios::cls(c)); }
std::string_view className(Class c) {
  return c ? view(class_getName(ios::cls(c))) : std::string_view("nil");
}

std::string_view className(Id obj) {
  if (!obj) return "nil";
  return view(object_getClassName(ios::object(obj)));
}

Id toId(Class c) { return reinterpret_cast<Id>(c); }

bool isKindOf(Id obj, Class c) { return obj && c && [ios::object(obj) isKindOfClass:ios::cls(c)]; }
bool isKindOf(Id obj, std::string_view name) { return isKindOf(obj, getClass(name)); }

bool respondsTo(Id obj, SEL s) {
  return obj && s && class_respondsToSelector(object_getClass(ios::object(obj)), ios::sel(s));
}
bool instancesRespondTo(Class c, SEL s) {
  return c && s && class_respondsToSelector(ios::cls(c), ios::sel(s));
}

Method getInstanceMethod(Class c, SEL s) {
  return c && s ? ios::handle(class_getInstanceMethod(ios::cls(c), ios::sel(s))) : nullptr;
}
Method getClassMethod(Class c, SEL s) {
  return c && s ? ios::handle(class_getClassMethod(ios::cls(c), ios::sel(s))) : nullptr;
}
SEL methodName(Method m) { return m ? ios::handle(method_getName(ios::method(m))) : nullptr; }
IMP methodImplementation(Method m) {
  return m ? ios::handle(method_getImplementation(ios::method(m))) : nullptr;
}
const char* typeEncoding(Method m) { return m ? method_getTypeEncoding(ios::method(m)) : nullptr; }

IMP setImplementation(Method m, IMP imp) {
  if (!m || !imp) return nullptr;
  return ios::handle(method_setImplementation(ios::method(m), ios::imp(imp)));
}

void exchangeImplementations(Method a, Method b) {
  if (a && b) method_exchangeImplementations(ios::method(a), ios::method(b));
}

bool addMethod(Class c, SEL s, IMP imp, const char* types) {
  return c && s && imp &&
         class_addMethod(ios::cls(c), ios::sel(s), ios::imp(imp), types ? types : "");
}

Ivar getInstanceVariable(Class c, std::string_view name) {
  return c ? ios::handle(class_getInstanceVariable(ios::cls(c), std::string(name).c_str()))
           : nullptr;
}
std::string_view ivarName(Ivar v) {
  return v ? view(ivar_getName(ios::ivar(v))) : std::string_view();
}
const char* ivarTypeEncoding(Ivar v) { return v ? ivar_getTypeEncoding(ios::ivar(v)) : nullptr; }

Id ivarObject(Id obj, Ivar v) {
  if (!obj || !v || !objectTyped(ivarTypeEncoding(v))) return nullptr;
  return ios::handle(object_getIvar(ios::object(obj), ios::ivar(v)));
}

void setIvarObject(Id obj, Ivar v, Id value) {
  if (!obj || !v || !objectTyped(ivarTypeEncoding(v))) return;
  object_setIvar(ios::object(obj), ios::ivar(v), ios::object(value));
}

Id ivarNamed(Id obj, std::string_view name) {
  return obj ? ivarObject(obj, getInstanceVariable(classOf(obj), name)) : nullptr;
}

void setIvarNamed(Id obj, std::string_view name, Id value) {
  if (obj) setIvarObject(obj, getInstanceVariable(classOf(obj), name), value);
}

Class allocateClassPair(Class super, std::string_view name) {
  return ios::handle(objc_allocateClassPair(ios::cls(super), std::string(name).c_str(), 0));
}

bool addIvar(Class c, std::string_view name, const char* types) {
  if (!c || !types) return false;
  NSUInteger size = 0, align = 1;
  NSGetSizeAndAlignment(types, &size, &align);
  uint8_t log2Align = 0;
  while ((NSUInteger(1) << log2Align) < align) ++log2Align;
  return class_addIvar(ios::cls(c), std::string(name).c_str(), size, log2Align, types);
}

void registerClassPair(Class c) {
  if (c) objc_registerClassPair(ios::cls(c));
}

// alloc is class_createInstance for every NSObject subclass, and the one of
// the two that ARC allows.
Id createInstance(Class c) { return c ? ios::handle([ios::cls(c) alloc]) : nullptr; }

void setAssociatedObject(Id obj, const void* key, Id value, Association policy) {
  if (!obj) return;
  objc_AssociationPolicy p = OBJC_ASSOCIATION_RETAIN_NONATOMIC;
  switch (policy) {
    case Association::Assign:
      p = OBJC_ASSOCIATION_ASSIGN;
      break;
    case Association::RetainNonatomic:
      p = OBJC_ASSOCIATION_RETAIN_NONATOMIC;
      break;
    case Association::CopyNonatomic:
      p = OBJC_ASSOCIATION_COPY_NONATOMIC;
      break;
    case Association::Retain:
      p = OBJC_ASSOCIATION_RETAIN;
      break;
    case Association::Copy:
      p = OBJC_ASSOCIATION_COPY;
      break;
  }
  objc_setAssociatedObject(ios::object(obj), key, ios::object(value), p);
}

Id getAssociatedObject(Id obj, const void* key) {
  return obj ? ios::handle(objc_getAssociatedObject(ios::object(obj), key)) : nullptr;
}

}  // namespace rt
