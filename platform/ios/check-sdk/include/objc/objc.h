// Check-build stand-in: the Objective-C base types, written from the
// runtime's public reference. Never seen by the real SDK build.
#pragma once

typedef struct objc_class *Class;
typedef struct objc_object *id;
typedef struct objc_selector *SEL;
typedef void (*IMP)(void);
typedef bool BOOL;

#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define Nil nullptr

extern "C" {
const char *sel_getName(SEL sel);
SEL sel_registerName(const char *str);
}
