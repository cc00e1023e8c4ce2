// Classes, selectors, methods, instance variables and associated objects: the
// Objective-C runtime as the system reaches the host through it. Every call
// says what it is on iOS and what it does with null inputs; none raises.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "rt/encoding.hpp"
#include "rt/types.hpp"

namespace rt {

// NSClassFromString / objc_getClass. Null when no class has the name.
Class getClass(std::string_view name);
// NSSelectorFromString / sel_registerName. Null only for an empty name; the
// same name always gives the same selector.
SEL sel(std::string_view name);
// sel_getName. "" for null.
std::string_view selName(SEL sel);

// object_getClass: an instance's class, a class's metaclass. Null for nil.
Class classOf(Id obj);
// class_getSuperclass. Null for a root class and for null.
Class superclass(Class cls);
// class_isMetaClass.
bool isMetaclass(Class cls);
// class_getName: "nil" for null, as the runtime answers.
std::string_view className(Class cls);
// object_getClassName: the class name of an instance, or of a class object
// its own name. "nil" for nil.
std::string_view className(Id obj);
// A class is an object (a __bridge cast on iOS).
Id toId(Class cls);
// [obj isKindOfClass:cls]: the object's class or one of its superclasses is
// cls. False for nil or a null class.
bool isKindOf(Id obj, Class cls);
// The same against a class looked up by name; false when the class is absent.
bool isKindOf(Id obj, std::string_view className);
// [obj respondsToSelector:sel] (class_respondsToSelector on the object's
// class; for a class object, its class methods). False for nil or null sel.
bool respondsTo(Id obj, SEL sel);
// [cls instancesRespondToSelector:sel].
bool instancesRespondTo(Class cls, SEL sel);

// class_getInstanceMethod: the method the class or one of its superclasses
// has for sel. Null when none, or for a null class or sel.
Method getInstanceMethod(Class cls, SEL sel);
// class_getClassMethod: the instance method of the class's metaclass.
Method getClassMethod(Class cls, SEL sel);
// method_getName, method_getImplementation, method_getTypeEncoding. Null for
// a null method; the type encoding may be null when the method has none.
SEL methodName(Method m);
IMP methodImplementation(Method m);
const char* typeEncoding(Method m);
// method_setImplementation: installs imp and returns the previous one. A null
// method or a null imp changes nothing and returns null.
IMP setImplementation(Method m, IMP imp);
// method_exchangeImplementations: swaps the implementations of the two method
// records (an inherited method is the superclass's record, so exchanging it
// changes the superclass). Nothing happens if either is null.
void exchangeImplementations(Method a, Method b);
// class_addMethod: adds to the class itself. Refuses (false) when the class
// itself already has sel, but overrides a method it only inherits. False for
// a null class, sel or imp. `types` may be null.
bool addMethod(Class cls, SEL sel, IMP imp, const char* types);

// Adds a C++ function as a method, with its encoding built from its type.
template <typename R, typename... A>
bool addMethod(Class cls, SEL s, R (*fn)(Id, SEL, A...)) {
  return addMethod(cls, s, reinterpret_cast<IMP>(fn), signature<R, A...>().c_str());
}
// The same as a class method (added to the metaclass).
template <typename R, typename... A>
bool addClassMethod(Class cls, SEL s, R (*fn)(Id, SEL, A...)) {
  return cls &&
         addMethod(classOf(toId(cls)), s, reinterpret_cast<IMP>(fn), signature<R, A...>().c_str());
}

// class_getInstanceVariable: searches the class and its superclasses. Null
// when absent or for a null class.
Ivar getInstanceVariable(Class cls, std::string_view name);
std::string_view ivarName(Ivar ivar);
const char* ivarTypeEncoding(Ivar ivar);
// object_getIvar / object_setIvar, for object-typed ("@") instance variables.
// Nil for a nil object, a null ivar, or an ivar of another type.
Id ivarObject(Id obj, Ivar ivar);
void setIvarObject(Id obj, Ivar ivar, Id value);
// class_getInstanceVariable on the object's class, then object_getIvar /
// object_setIvar: the object-typed instance variable `name`, the class's own
// or a superclass's. Reads nil, and writes nothing, for a nil object, a
// variable the class lacks, or one of another type.
Id ivarNamed(Id obj, std::string_view name);
void setIvarNamed(Id obj, std::string_view name, Id value);

// objc_allocateClassPair / class_addIvar / objc_registerClassPair. A new class
// is found by name only once registered; allocating a name that is taken gives
// null. Instance variables can be added only before registering.
Class allocateClassPair(Class super, std::string_view name);
bool addIvar(Class cls, std::string_view name, const char* types);
void registerClassPair(Class cls);
// class_createInstance (alloc without init). Nil for a null class.
Id createInstance(Class cls);

// objc_setAssociatedObject / objc_getAssociatedObject. The object holds the
// value (strongly, except with Assign) until it is replaced; setting nil
// removes it. Keys are compared by address. Nothing happens for nil objects.
enum class Association { Assign, RetainNonatomic, CopyNonatomic, Retain, Copy };
void setAssociatedObject(Id obj, const void* key, Id value,
                         Association policy = Association::RetainNonatomic);
Id getAssociatedObject(Id obj, const void* key);

}  // namespace rt
