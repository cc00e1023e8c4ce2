// Check-build stand-in: the runtime functions the backend calls, with the
// signatures of the Objective-C runtime reference.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <objc/objc.h>

typedef struct objc_method *Method;
typedef struct objc_ivar *Ivar;

typedef enum objc_AssociationPolicy : uintptr_t {
  OBJC_ASSOCIATION_ASSIGN = 0,
  OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
  OBJC_ASSOCIATION_COPY_NONATOMIC = 3,
  OBJC_ASSOCIATION_RETAIN = 01401,
  OBJC_ASSOCIATION_COPY = 01403,
} objc_AssociationPolicy;

extern "C" {
Class object_getClass(id obj);
Class object_setClass(id obj, Class cls);
const char *object_getClassName(id obj);
id object_getIvar(id obj, Ivar ivar);
void object_setIvar(id obj, Ivar ivar, id value);

Class objc_lookUpClass(const char *name);
Class objc_allocateClassPair(Class superclass, const char *name, size_t extraBytes);
void objc_registerClassPair(Class cls);

const char *class_getName(Class cls);
Class class_getSuperclass(Class cls);
BOOL class_isMetaClass(Class cls);
BOOL class_respondsToSelector(Class cls, SEL sel);
Method class_getInstanceMethod(Class cls, SEL name);
Method class_getClassMethod(Class cls, SEL name);
IMP class_getMethodImplementation(Class cls, SEL name);
BOOL class_addMethod(Class cls, SEL name, IMP imp, const char *types);
Ivar class_getInstanceVariable(Class cls, const char *name);
BOOL class_addIvar(Class cls, const char *name, size_t size, uint8_t alignment, const char *types);

SEL method_getName(Method m);
IMP method_getImplementation(Method m);
const char *method_getTypeEncoding(Method m);
IMP method_setImplementation(Method m, IMP imp);
void method_exchangeImplementations(Method m1, Method m2);

const char *ivar_getName(Ivar v);
const char *ivar_getTypeEncoding(Ivar v);

void objc_setAssociatedObject(id object, const void *key, id value, objc_AssociationPolicy policy);
id objc_getAssociatedObject(id object, const void *key);
}
