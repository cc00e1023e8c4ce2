// Check-build stand-in: objc_msgSend with the strict prototype, to be cast to
// the called method's type before use.
#pragma once

#include <objc/objc.h>

extern "C" void objc_msgSend(void);
