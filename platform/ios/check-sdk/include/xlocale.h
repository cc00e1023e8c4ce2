// Check-build stand-in for Darwin's <xlocale.h>, which libc++'s locale
// support includes on Apple targets for locale_t and the *_l functions.
// glibc's <locale.h> declares locale_t, newlocale and uselocale; the check
// only needs the names to compile, and anything glibc-only that reached the
// dylib would still fail its allow-list.
#pragma once

#include <locale.h>
